#include <Vornal/VornalCommonSmData.h>

#include <Kiv/Rows.h>

KIV_DEFINE_NAMED( Vornal::VornalCommonSmData )

namespace Vornal {

void VornalCommonSmData::intfPortIs( Pelk::IntfId const & intfId,
                                     VornalTypes::VornalPort const & port ) {
   if ( !vornalIntfToPortCacheHas( intfId ) ) {
      vornalIntfToPortCacheIs( intfId, port );
   }
   vornalIntfToPortIs( intfId, port );
   vornalIntfToPortCacheIs( intfId, port );
}

void VornalCommonSmData::intfPortDel( Pelk::IntfId const & intfId ) {
   vornalIntfToPortDel( intfId );
}

Pelk::IntfId VornalCommonSmData::intfOfPort( VornalTypes::VornalPort const & port ) const {
   for ( auto iter = vornalIntfToPortIter(); iter; ++iter ) {
      if ( iter.value() == port ) {
         return iter.key();
      }
   }
   return {};
}

}  // namespace Vornal
