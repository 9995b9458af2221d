#include <Decorators/SdkDecorator.h>

#include <array>

#include <FieldProcessor/Fields.h>

namespace Chip {

namespace {

SdkValue actionValue( bcm_field_action_t action ) {
   if ( std::optional< Action > const known = actionOf( action ) ) {
      return { "action", nameOf( *known ) };
   }
   return { "action", static_cast< U32 >( action ) };
}

std::array< SdkValue, 2 > dataAndMask( U32 data, U32 mask ) {
   return { { { "data", data }, { "mask", mask } } };
}

}  // namespace

std::optional< S32 > SdkDecorator::resultInsteadOf( std::string_view ) {
   return std::nullopt;
}

void SdkDecorator::done( SdkCall const & ) {}

// A call that passes values.
template< typename Make >
S32 SdkDecorator::write( std::string_view operation, U32 unit, U32 entry,
                         std::initializer_list< SdkValue > values, Make make ) {
   std::optional< S32 > const instead = resultInsteadOf( operation );
   S32 const rc = instead ? *instead : make();
   done( { operation, unit, entry, { values.begin(), values.size() }, rc } );
   return rc;
}

// A call that reads back; `values` are there to be told once they have been read. A field call has
// failed when its code is negative, whatever the code of success.
template< typename Make, typename Values >
S32 SdkDecorator::read( std::string_view operation, U32 unit, U32 entry, Make make,
                        Values values ) {
   std::optional< S32 > const instead = resultInsteadOf( operation );
   S32 const rc = instead ? *instead : make();
   if ( instead || rc < 0 ) {
      done( { operation, unit, entry, {}, rc } );
   } else {
      auto const readBack = values();
      done( { operation, unit, entry, readBack, rc } );
   }
   return rc;
}

S32 SdkDecorator::bcm_field_qualify_SrcVxlanGport( U32 unit, U32 entry, U32 gport ) {
   return write( __func__, unit, entry, { { "gport", gport } },
                 [ & ] { return next_.bcm_field_qualify_SrcVxlanGport( unit, entry, gport ); } );
}

S32 SdkDecorator::bcm_field_qualify_PacketRes( U32 unit, U32 entry, U32 data, U32 mask ) {
   return write( __func__, unit, entry, { { "data", data }, { "mask", mask } },
                 [ & ] { return next_.bcm_field_qualify_PacketRes( unit, entry, data, mask ); } );
}

S32 SdkDecorator::bcm_field_qualify_TunnelTerminated( U32 unit, U32 entry, U8 data, U8 mask ) {
   return write( __func__, unit, entry, { { "data", U32{ data } }, { "mask", U32{ mask } } },
                 [ & ] {
                    return next_.bcm_field_qualify_TunnelTerminated( unit, entry, data, mask );
                 } );
}

S32 SdkDecorator::bcm_field_qualify_VxlanNetworkId( U32 unit, U32 entry, U32 data, U32 mask ) {
   return write( __func__, unit, entry, { { "data", data }, { "mask", mask } }, [ & ] {
      return next_.bcm_field_qualify_VxlanNetworkId( unit, entry, data, mask );
   } );
}

S32 SdkDecorator::bcm_field_qualify_DstPort( U32 unit, U32 entry, U32 modId, U32 modIdMask,
                                             U32 port, U32 portMask ) {
   return write( __func__, unit, entry,
                 { { "modId", modId },
                   { "modIdMask", modIdMask },
                   { "port", port },
                   { "portMask", portMask } },
                 [ & ] {
                    return next_.bcm_field_qualify_DstPort( unit, entry, modId, modIdMask, port,
                                                            portMask );
                 } );
}

S32 SdkDecorator::bcm_field_qualify_IpType( U32 unit, U32 entry, bcm_field_IpType_t ipType ) {
   return write( __func__, unit, entry, { { "ipType", static_cast< U32 >( ipType ) } },
                 [ & ] { return next_.bcm_field_qualify_IpType( unit, entry, ipType ); } );
}

S32 SdkDecorator::bcm_field_qualify_IngressClassField( U32 unit, U32 entry, U32 data, U32 mask ) {
   return write( __func__, unit, entry, { { "data", data }, { "mask", mask } }, [ & ] {
      return next_.bcm_field_qualify_IngressClassField( unit, entry, data, mask );
   } );
}

S32 SdkDecorator::bcm_field_action_add( U32 unit, U32 entry, bcm_field_action_t action, U32 param0,
                                        U32 param1 ) {
   return write( __func__, unit, entry,
                 { actionValue( action ), { "param0", param0 }, { "param1", param1 } }, [ & ] {
                    return next_.bcm_field_action_add( unit, entry, action, param0, param1 );
                 } );
}

S32 SdkDecorator::bcm_field_qualify_SrcVxlanGport_get( U32 unit, U32 entry, U32 * gport ) {
   return read(
      __func__, unit, entry,
      [ & ] { return next_.bcm_field_qualify_SrcVxlanGport_get( unit, entry, gport ); },
      [ & ] {
         return std::array< SdkValue, 1 >{ { { "gport", *gport } } };
      } );
}

S32 SdkDecorator::bcm_field_qualify_PacketRes_get( U32 unit, U32 entry, U32 * data, U32 * mask ) {
   return read(
      __func__, unit, entry,
      [ & ] { return next_.bcm_field_qualify_PacketRes_get( unit, entry, data, mask ); },
      [ & ] { return dataAndMask( *data, *mask ); } );
}

S32 SdkDecorator::bcm_field_qualify_TunnelTerminated_get( U32 unit, U32 entry, U8 * data,
                                                          U8 * mask ) {
   return read(
      __func__, unit, entry,
      [ & ] { return next_.bcm_field_qualify_TunnelTerminated_get( unit, entry, data, mask ); },
      [ & ] { return dataAndMask( *data, *mask ); } );
}

S32 SdkDecorator::bcm_field_qualify_VxlanNetworkId_get( U32 unit, U32 entry, U32 * data,
                                                        U32 * mask ) {
   return read(
      __func__, unit, entry,
      [ & ] { return next_.bcm_field_qualify_VxlanNetworkId_get( unit, entry, data, mask ); },
      [ & ] { return dataAndMask( *data, *mask ); } );
}

S32 SdkDecorator::bcm_field_qualify_DstPort_get( U32 unit, U32 entry, U32 * modId, U32 * modIdMask,
                                                 U32 * port, U32 * portMask ) {
   return read(
      __func__, unit, entry,
      [ & ] {
         return next_.bcm_field_qualify_DstPort_get( unit, entry, modId, modIdMask, port,
                                                     portMask );
      },
      [ & ] {
         return std::array< SdkValue, 4 >{ { { "modId", *modId },
                                             { "modIdMask", *modIdMask },
                                             { "port", *port },
                                             { "portMask", *portMask } } };
      } );
}

S32 SdkDecorator::bcm_field_qualify_IpType_get( U32 unit, U32 entry, bcm_field_IpType_t * ipType ) {
   return read(
      __func__, unit, entry,
      [ & ] { return next_.bcm_field_qualify_IpType_get( unit, entry, ipType ); },
      [ & ] {
         return std::array< SdkValue, 1 >{ { { "ipType", static_cast< U32 >( *ipType ) } } };
      } );
}

S32 SdkDecorator::bcm_field_qualify_IngressClassField_get( U32 unit, U32 entry, U32 * data,
                                                           U32 * mask ) {
   return read(
      __func__, unit, entry,
      [ & ] { return next_.bcm_field_qualify_IngressClassField_get( unit, entry, data, mask ); },
      [ & ] { return dataAndMask( *data, *mask ); } );
}

S32 SdkDecorator::bcm_field_action_get( U32 unit, U32 entry, bcm_field_action_t action,
                                        U32 * param0, U32 * param1 ) {
   return read(
      __func__, unit, entry,
      [ & ] { return next_.bcm_field_action_get( unit, entry, action, param0, param1 ); },
      [ & ] {
         return std::array< SdkValue, 3 >{
            { actionValue( action ), { "param0", *param0 }, { "param1", *param1 } }
         };
      } );
}

}  // namespace Chip
