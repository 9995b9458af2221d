#include <FieldProcessor/ResultCode.h>

#include <algorithm>
#include <array>

namespace Chip {

namespace {

struct Description {
   ResultCode code;
   std::string_view text;
};

constexpr std::array< Description, 8 > kDescriptions{ {
   { ResultCode::None, "Ok" },
   { ResultCode::UnknownUnit, "Unknown unit" },
   { ResultCode::UnknownEntry, "Unknown entry" },
   { ResultCode::NotFound, "Not found" },
   { ResultCode::Exists, "Action exists" },
   { ResultCode::Unsupported, "Group does not support this" },
   { ResultCode::BadValue, "Value out of range" },
   { ResultCode::NotInstalled, "Entry is not installed" },
} };

Description const * find( S32 code ) {
   auto const * const found =
      std::find_if( kDescriptions.begin(), kDescriptions.end(),
                    [ & ]( Description const & one ) { return codeOf( one.code ) == code; } );
   return found == kDescriptions.end() ? nullptr : found;
}

}  // namespace

std::string_view resultText( S32 code ) {
   if ( code >= 0 ) {
      return kDescriptions.front().text;
   }
   Description const * const found = find( code );
   return found ? found->text : "Unknown error";
}

}  // namespace Chip
