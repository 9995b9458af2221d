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
   if ( intfOfPortChange_ != publisher().changes() ) {
      intfOfPort_.clear();
      for ( auto iter = vornalIntfToPortIter(); iter; ++iter ) {
         intfOfPort_.try_emplace( iter.value(), iter.key() );
      }
      intfOfPortChange_ = publisher().changes();
   }
   auto const found = intfOfPort_.find( port );
   return found == intfOfPort_.end() ? Pelk::IntfId() : found->second;
}

}  // namespace Vornal
