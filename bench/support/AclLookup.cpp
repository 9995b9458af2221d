#include <support/AclLookup.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <string>

#include <Quelm/Error.h>

#include <arpa/inet.h>
#include <rte_acl.h>
#include <rte_eal.h>

namespace Bench {

namespace {

enum Field : U8 { TunnelTerminated, SrcVxlanGport, PacketRes, VxlanNetworkId, kFields };

RTE_ACL_RULE_DEF( AclRule, kFields );

rte_acl_field_def field( Field index, U8 size, std::size_t offset ) {
   rte_acl_field_def definition{};
   definition.type = RTE_ACL_FIELD_TYPE_BITMASK;
   definition.size = size;
   definition.field_index = index;
   definition.input_index = index;
   definition.offset = static_cast< U32 >( offset );
   return definition;
}

// Where a field of the classifier stands in the chip's keys.
std::size_t placeOf( Field field ) {
   constexpr std::array places{ Chip::Qualifier::TunnelTerminated, Chip::Qualifier::SrcVxlanGport,
                                Chip::Qualifier::PacketRes, Chip::Qualifier::VxlanNetworkId };
   return Chip::rowOf( places.at( field ) ).keyPosition;
}

AclRule ruleOf( Chip::Entry const & entry, U32 rank ) {
   Chip::Ternary const ternary = Chip::ternaryOf( entry );
   AclRule rule{};
   rule.data.category_mask = 1;
   rule.data.priority = static_cast< S32 >( RTE_ACL_MAX_PRIORITY - rank );
   rule.data.userdata = entry.id();
   for ( U8 n = 0; n < kFields; ++n ) {
      std::size_t const place = placeOf( static_cast< Field >( n ) );
      if ( n == TunnelTerminated ) {
         rule.field[ n ].value.u8 = static_cast< U8 >( ternary.data[ place ] );
         rule.field[ n ].mask_range.u8 = static_cast< U8 >( ternary.masks[ place ] );
      } else {
         rule.field[ n ].value.u32 = ternary.data[ place ];
         rule.field[ n ].mask_range.u32 = ternary.masks[ place ];
      }
   }
   return rule;
}

void require( bool isDone, char const * what ) {
   if ( !isDone ) {
      throw Quelm::Error( std::string( "DPDK: " ) + what + " failed" );
   }
}

void startDpdk() {
   static bool const isStarted = [] {
      std::array< std::string, 7 > words{ "bench",       "--no-huge",      "--no-pci",
                                          "--no-shconf", "--no-telemetry", "--log-level=error",
                                          "-m256" };
      std::array< char *, words.size() > arguments{};
      for ( std::size_t n = 0; n < words.size(); ++n ) {
         arguments.at( n ) = words.at( n ).data();
      }
      return rte_eal_init( static_cast< int >( arguments.size() ), arguments.data() ) >= 0;
   }();
   require( isStarted, "rte_eal_init" );
}

}  // namespace

struct AclLookup::Context {
   rte_acl_ctx * acl = nullptr;
};

AclLookup::AclLookup( Chip::Group const & group )
      : group_( group ), context_( std::make_unique< Context >() ) {
   startDpdk();
   rte_acl_param parameters{};
   parameters.name = "rules";
   parameters.socket_id = SOCKET_ID_ANY;
   parameters.rule_size = RTE_ACL_RULE_SZ( kFields );
   parameters.max_rule_num = group.capacity();
   context_->acl = rte_acl_create( &parameters );
   require( context_->acl != nullptr, "rte_acl_create" );
   compile();
}

AclLookup::~AclLookup() {
   rte_acl_free( context_->acl );
}

void AclLookup::compile() {
   rte_acl_reset( context_->acl );
   std::vector< Chip::Entry const * > entries;
   for ( Chip::Entry const * const entry : group_.entries() ) {
      if ( entry->written() ) {
         entries.push_back( entry );
      }
   }
   std::sort( entries.begin(), entries.end(), []( auto const * a, auto const * b ) {
      return Chip::precedenceOf( *a ) < Chip::precedenceOf( *b );
   } );
   std::vector< AclRule > rules;
   for ( Chip::Entry const * const entry : entries ) {
      rules.push_back( ruleOf( *entry, static_cast< U32 >( rules.size() ) ) );
   }
   require( rte_acl_add_rules( context_->acl, reinterpret_cast< rte_acl_rule * >( rules.data() ),
                               static_cast< U32 >( rules.size() ) ) == 0,
            "rte_acl_add_rules" );
   rte_acl_config config{};
   config.num_categories = 1;
   config.num_fields = kFields;
   config.defs[ TunnelTerminated ] =
      field( TunnelTerminated, 1, offsetof( Key, tunnelTerminated ) );
   config.defs[ SrcVxlanGport ] = field( SrcVxlanGport, 4, offsetof( Key, srcVxlanGport ) );
   config.defs[ PacketRes ] = field( PacketRes, 4, offsetof( Key, packetRes ) );
   config.defs[ VxlanNetworkId ] = field( VxlanNetworkId, 4, offsetof( Key, vxlanNetworkId ) );
   require( rte_acl_build( context_->acl, &config ) == 0, "rte_acl_build" );
   require( rte_acl_set_ctx_classify( context_->acl, RTE_ACL_CLASSIFY_SCALAR ) == 0,
            "rte_acl_set_ctx_classify" );
}

AclLookup::Key::Key( Chip::IngressFields const & frame )
      : tunnelTerminated( frame.tunnelTerminated ? 1 : 0 ),
        srcVxlanGport( htonl( frame.srcVxlanGport ) ),
        packetRes( htonl( frame.packetRes ) ),
        vxlanNetworkId( htonl( frame.vxlanNetworkId ) ) {}

void AclLookup::find( std::vector< U8 const * > const & keys, std::vector< U32 > & winners ) const {
   // Takes the keys as pointers to constant bytes, whatever its signature says.
   rte_acl_classify( context_->acl, const_cast< U8 const ** >( keys.data() ), winners.data(),
                     static_cast< U32 >( keys.size() ), 1 );
}

}  // namespace Bench
