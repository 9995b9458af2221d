#include <FieldProcessor/Fields.h>

namespace Chip {

std::string_view nameOf( GroupKind kind ) {
   return kind == GroupKind::Ingress ? "Ingress" : "Egress";
}

std::string_view nameOf( Qualifier qualifier ) {
   constexpr std::array< std::string_view, kQualifiers.size() > names{
      "SrcVxlanGport", "PacketRes", "TunnelTerminated", "VxlanNetworkId",
      "DstPort",       "IpType",    "IngressClassField"
   };
   return names.at( static_cast< std::size_t >( qualifier ) );
}

std::string_view nameOf( Action action ) {
   constexpr std::array< std::string_view, kActions.size() > names{ "EgressMask",
                                                                    "EgressClassSelect",
                                                                    "NewClassId", "Drop" };
   return names.at( static_cast< std::size_t >( action ) );
}

std::optional< Action > actionOf( bcm_field_action_t action ) {
   switch ( action ) {
   case bcmFieldActionDrop: return Action::Drop;
   case bcmFieldActionNewClassId: return Action::NewClassId;
   case bcmFieldActionEgressClassSelect: return Action::EgressClassSelect;
   }
   return std::nullopt;
}

}  // namespace Chip
