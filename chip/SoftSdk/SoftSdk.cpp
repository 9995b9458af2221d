#include <SoftSdk/SoftSdk.h>

#include <SoftSdk/Gport.h>
#include <SoftSdk/PortBitmap.h>

namespace Chip {

namespace {

constexpr U32 kExactMatch = BCM_FIELD_EXACT_MATCH_MASK;
constexpr U32 kLargestClassId = 0xffff;

bool isPossible( Action action, U32 param0 ) {
   switch ( action ) {
   case Action::EgressClassSelect: return param0 == BCM_FIELD_EGRESS_CLASS_SELECT_NEW;
   case Action::NewClassId: return param0 <= kLargestClassId;
   case Action::Drop:
   case Action::EgressMask: return true;
   }
   return false;
}

}  // namespace

// The result of `operation`, a function of the entry, or why there is no entry.
template< typename Operation > S32 SoftSdk::onEntry( U32 unit, U32 entry, Operation operation ) {
   Unit * const onUnit = units_.unit( unit );
   if ( !onUnit ) {
      return codeOf( ResultCode::UnknownUnit );
   }
   Entry * const found = onUnit->entry( entry );
   return codeOf( found ? operation( *found ) : ResultCode::UnknownEntry );
}

S32 SoftSdk::qualify( U32 unit, U32 entry, Qualifier qualifier, Match const & match ) {
   return onEntry( unit, entry,
                   [ & ]( Entry & found ) { return found.qualify( qualifier, match ); } );
}

// `give` takes what was read, and runs on success only.
template< typename Give >
S32 SoftSdk::readBack( U32 unit, U32 entry, Qualifier qualifier, Give give ) {
   return onEntry( unit, entry, [ & ]( Entry const & found ) {
      Match match;
      ResultCode const code = found.readBack( qualifier, match );
      if ( code == ResultCode::None ) {
         give( match );
      }
      return code;
   } );
}

S32 SoftSdk::bcm_field_qualify_SrcVxlanGport( U32 unit, U32 entry, U32 gport ) {
   return onEntry( unit, entry, [ & ]( Entry & found ) {
      return vpIndexOf( gport ) ? found.qualify( Qualifier::SrcVxlanGport, { gport, kExactMatch } )
                                : ResultCode::BadValue;
   } );
}

S32 SoftSdk::bcm_field_qualify_PacketRes( U32 unit, U32 entry, U32 data, U32 mask ) {
   return qualify( unit, entry, Qualifier::PacketRes, { data, mask } );
}

S32 SoftSdk::bcm_field_qualify_TunnelTerminated( U32 unit, U32 entry, U8 data, U8 mask ) {
   return qualify( unit, entry, Qualifier::TunnelTerminated, { data, mask } );
}

S32 SoftSdk::bcm_field_qualify_VxlanNetworkId( U32 unit, U32 entry, U32 data, U32 mask ) {
   return qualify( unit, entry, Qualifier::VxlanNetworkId, { data, mask } );
}

S32 SoftSdk::bcm_field_qualify_DstPort( U32 unit, U32 entry, U32 modId, U32 modIdMask, U32 port,
                                        U32 portMask ) {
   return qualify( unit, entry, Qualifier::DstPort, { port, portMask, modId, modIdMask } );
}

S32 SoftSdk::bcm_field_qualify_IpType( U32 unit, U32 entry, bcm_field_IpType_t ipType ) {
   return onEntry( unit, entry, [ & ]( Entry & found ) {
      U32 const mask = ipType == bcmFieldIpTypeAny ? 0 : kExactMatch;
      return ipType <= bcmFieldIpTypeIpv6 ? found.qualify( Qualifier::IpType, { ipType, mask } )
                                          : ResultCode::BadValue;
   } );
}

S32 SoftSdk::bcm_field_qualify_IngressClassField( U32 unit, U32 entry, U32 data, U32 mask ) {
   return qualify( unit, entry, Qualifier::IngressClassField, { data, mask } );
}

S32 SoftSdk::bcm_field_action_add( U32 unit, U32 entry, bcm_field_action_t action, U32 param0,
                                   U32 param1 ) {
   return onEntry( unit, entry, [ & ]( Entry & found ) {
      std::optional< Action > const known = actionOf( action );
      return known && isPossible( *known, param0 ) ? found.actionAdd( *known, { param0, param1 } )
                                                   : ResultCode::BadValue;
   } );
}

S32 SoftSdk::bcm_field_qualify_SrcVxlanGport_get( U32 unit, U32 entry, U32 * gport ) {
   return readBack( unit, entry, Qualifier::SrcVxlanGport,
                    [ & ]( Match const & match ) { *gport = match.data; } );
}

S32 SoftSdk::bcm_field_qualify_PacketRes_get( U32 unit, U32 entry, U32 * data, U32 * mask ) {
   return readBack( unit, entry, Qualifier::PacketRes, [ & ]( Match const & match ) {
      *data = match.data;
      *mask = match.mask;
   } );
}

S32 SoftSdk::bcm_field_qualify_TunnelTerminated_get( U32 unit, U32 entry, U8 * data, U8 * mask ) {
   return readBack( unit, entry, Qualifier::TunnelTerminated, [ & ]( Match const & match ) {
      *data = static_cast< U8 >( match.data );
      *mask = static_cast< U8 >( match.mask );
   } );
}

S32 SoftSdk::bcm_field_qualify_VxlanNetworkId_get( U32 unit, U32 entry, U32 * data, U32 * mask ) {
   return readBack( unit, entry, Qualifier::VxlanNetworkId, [ & ]( Match const & match ) {
      *data = match.data;
      *mask = match.mask;
   } );
}

S32 SoftSdk::bcm_field_qualify_DstPort_get( U32 unit, U32 entry, U32 * modId, U32 * modIdMask,
                                            U32 * port, U32 * portMask ) {
   return readBack( unit, entry, Qualifier::DstPort, [ & ]( Match const & match ) {
      *modId = match.modId;
      *modIdMask = match.modIdMask;
      *port = match.data;
      *portMask = match.mask;
   } );
}

S32 SoftSdk::bcm_field_qualify_IpType_get( U32 unit, U32 entry, bcm_field_IpType_t * ipType ) {
   return readBack( unit, entry, Qualifier::IpType, [ & ]( Match const & match ) {
      *ipType = static_cast< bcm_field_IpType_t >( match.data );
   } );
}

S32 SoftSdk::bcm_field_qualify_IngressClassField_get( U32 unit, U32 entry, U32 * data,
                                                      U32 * mask ) {
   return readBack( unit, entry, Qualifier::IngressClassField, [ & ]( Match const & match ) {
      *data = match.data;
      *mask = match.mask;
   } );
}

S32 SoftSdk::bcm_field_action_get( U32 unit, U32 entry, bcm_field_action_t action, U32 * param0,
                                   U32 * param1 ) {
   return onEntry( unit, entry, [ & ]( Entry const & found ) {
      std::optional< Action > const known = actionOf( action );
      ActionParameters parameters;
      ResultCode const code = known ? found.readBack( *known, parameters ) : ResultCode::BadValue;
      if ( code == ResultCode::None ) {
         *param0 = parameters.param0;
         *param1 = parameters.param1;
      }
      return code;
   } );
}

U32 SoftSdk::vxlanGport( U16 vpIndex ) const {
   return vxlanGportOf( vpIndex );
}

void SoftSdk::pbmpClear( _shr_pbmp & pbmp ) const {
   pbmp = {};
}

bool SoftSdk::pbmpEqual( _shr_pbmp const & a, _shr_pbmp const & b ) const {
   return a.words == b.words;
}

U32 SoftSdk::pbmpCount( _shr_pbmp const & pbmp ) const {
   return bitmapOf( pbmp ).count();
}

}  // namespace Chip
