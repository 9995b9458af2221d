#include <FieldProcessor/ResultCode.h>

#include <algorithm>
#include <array>

namespace Chip {

namespace {

struct Description {
   ResultCode code;
   std::string_view name;
   std::string_view text;
};

constexpr std::array< Description, 8 > kDescriptions{ {
   { ResultCode::None, "NONE", "Ok" },
   { ResultCode::UnknownUnit, "UNIT", "Unknown unit" },
   { ResultCode::UnknownEntry, "ENTRY", "Unknown entry" },
   { ResultCode::NotFound, "NOT_FOUND", "Not found" },
   { ResultCode::Exists, "EXISTS", "Action exists" },
   { ResultCode::Unsupported, "UNSUPPORTED", "Group does not support this" },
   { ResultCode::BadValue, "BAD_VALUE", "Value out of range" },
   { ResultCode::NotInstalled, "NOT_INSTALLED", "Entry is not installed" },
} };

Description const * find( S32 code ) {
   auto const * const found =
      std::find_if( kDescriptions.begin(), kDescriptions.end(),
                    [ & ]( Description const & one ) { return codeOf( one.code ) == code; } );
   return found == kDescriptions.end() ? nullptr : found;
}

}  // namespace

std::string_view resultName( S32 code ) {
   Description const * const found = find( code );
   return found ? found->name : std::string_view();
}

std::string_view resultText( S32 code ) {
   if ( code >= 0 ) {
      return kDescriptions.front().text;
   }
   Description const * const found = find( code );
   return found ? found->text : "Unknown error";
}

}  // namespace Chip
