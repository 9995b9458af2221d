#include <Audit/Records.h>

#include <algorithm>

#include <fmt/format.h>

#include <Quelm/Text.h>

namespace Audit {

namespace {

using Entity = Quelm::Ptr< Kiv::Entity >;

// --- The generic interface

template< typename T > T value( Entity const & entity, char const * name ) {
   auto const * const attribute = entity->typeData().find( name );
   return attribute ? Quelm::fromText< T >( attribute->text( *entity, {} ) ) : T{};
}

template< typename K, typename T >
std::map< K, T > collection( Entity const & entity, char const * name ) {
   std::map< K, T > result;
   if ( auto const * const attribute = entity->typeData().find( name ) ) {
      for ( std::string const & key : attribute->keys( *entity ) ) {
         result[ Quelm::fromText< K >( key ) ] =
            Quelm::fromText< T >( attribute->text( *entity, key ) );
      }
   }
   return result;
}

template< typename K > std::map< K, Entity > members( Entity const & entity, char const * name ) {
   std::map< K, Entity > result;
   if ( auto const * const attribute = entity->typeData().find( name ) ) {
      for ( std::string const & key : attribute->keys( *entity ) ) {
         result[ Quelm::fromText< K >( key ) ] = attribute->entity( *entity, key );
      }
   }
   return result;
}

// --- The records

template< typename T >
void take( std::map< VtepOn, T > & all, U16 unit, std::map< Pelk::IpGenAddr, T > const & some ) {
   for ( auto const & [ vtep, value ] : some ) {
      all[ { unit, vtep } ] = value;
   }
}

void readEgress( VtepOn const & on, Entity const & list, Records & records ) {
   records.egressPorts[ on ] = value< VornalTypes::VornalPortList >( list, "esPortList" );
   for ( auto const & [ port, id ] :
         collection< VornalTypes::VornalPort, U32 >( list, "efpEntryId" ) ) {
      records.entries[ { on.unit, Purpose::egressDrop, on.vtep, port } ] = {
         id, fmt::format( "tepIpToEntry[{}]/esPortAndEFPEntryIdList[{}]/efpEntryId[{}]", on.unit,
                          on.vtep.stringValue(), Quelm::textOf( port ) )
      };
   }
}

void readUnit( U16 unit, Entity const & record, Records & records ) {
   records.units.insert( unit );
   for ( auto const & [ vtep, id ] : collection< Pelk::IpGenAddr, U32 >( record, "entryId" ) ) {
      records.entries[ { unit, Purpose::vtep, vtep } ] = {
         id, fmt::format( "tepIpToEntry[{}]/entryId[{}]", unit, vtep.stringValue() )
      };
   }
   take( records.masks, unit,
         collection< Pelk::IpGenAddr, Brum::PerUnitBitmap >( record, "esPbmp" ) );
   take( records.vpIndices, unit, collection< Pelk::IpGenAddr, U16 >( record, "vpIndex" ) );
   for ( auto const & [ vtep, list ] :
         members< Pelk::IpGenAddr >( record, "esPortAndEFPEntryIdList" ) ) {
      readEgress( { unit, vtep }, list, records );
   }
}

void readUnicast( Entity const & machine, char const * name, Purpose purpose, Records & records ) {
   for ( auto const & [ unit, id ] : collection< U16, U32 >( machine, name ) ) {
      records.entries[ { unit, purpose } ] = { id, fmt::format( "{}[{}]", name, unit ) };
   }
}

}  // namespace

Quelm::Ptr< Kiv::Entity > machineIn( StateDatabase::Directory::Entities const & entities ) {
   for ( auto const & [ path, entity ] : entities ) {
      auto const * const attribute = entity->typeData().find( "evpnMultihomingLocalBiasSm" );
      if ( auto const machine = attribute ? attribute->entity( *entity, {} ) : nullptr ) {
         return machine;
      }
   }
   return nullptr;
}

bool Records::hasQueued( U32 vni ) const {
   return std::any_of( queue.begin(), queue.end(),
                       [ vni ]( auto const & queued ) { return queued.second == vni; } );
}

Records recordsOf( StateDatabase::Directory::Entities const & entities, U16 lastUnit ) {
   Records records;
   Entity const machine = machineIn( entities );
   if ( !machine ) {
      return records;
   }
   records.isMachine = true;
   records.isInitialized = value< bool >( machine, "initialized" );
   records.isExhausted = value< bool >( machine, "tcamExhaustion" );
   for ( auto const & [ unit, record ] : members< U16 >( machine, "tepIpToEntry" ) ) {
      readUnit( unit, record, records );
   }
   readUnicast( machine, "l2UcastRuleInstalled", Purpose::l2Unicast, records );
   readUnicast( machine, "l3UcastRuleInstalled", Purpose::l3Unicast, records );
   for ( auto const & [ vni, id ] : collection< U32, U32 >( machine, "vniToTcamEntryId" ) ) {
      records.entries[ { lastUnit, Purpose::vni, {}, {}, vni } ] = {
         id, fmt::format( "vniToTcamEntryId[{}]", vni )
      };
   }
   records.classIds =
      collection< Pelk::IpGenAddr, VornalCommon::ClassId >( machine, "i2eTepIpClassId" );
   records.classIdUsers = collection< Pelk::IpGenAddr, U32 >( machine, "i2eTepIpClassIdRefCount" );
   records.queue = collection< L3::VrfName, U32 >( machine, "unprogrammedTcamRulesList" );
   return records;
}

}  // namespace Audit
