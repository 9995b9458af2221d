// The plug-in's records against the state and the chip.

#include <algorithm>

#include <Audit/Comparison.h>
#include <Audit/SharedSegments.h>
#include <Audit/Variant.h>
#include <Snapshot/RuleText.h>

#include <fmt/format.h>

namespace Audit {

namespace {

using Pelk::IpGenAddr;

constexpr char const * kAbsent = "absent";

std::string entryText( U32 id ) {
   return id == 0 ? "no entry" : fmt::format( "entry {}", id );
}

class RecordCheck {
 public:
   RecordCheck( Sides const & sides, Differences & found )
         : state_( sides.state ),
           records_( sides.records ),
           wanted_( sides.wanted ),
           rules_( sides.matched.rules ),
           others_( sides.matched.others ),
           found_( found ) {}

   void check() {
      if ( !wanted_.empty() && records_.isMachine && !records_.isInitialized ) {
         add( {}, "initialized", "false", "true", "the plug-in is ready" );
      }
      checkEntries();
      checkRulesWithoutRecord();
      checkUnits();
      checkMasks();
      checkVpIndices();
      checkEgressPorts();
      checkClassIds();
      checkClassIdUsers();
      checkClassIdRequests();
      checkQueue();
   }

 private:
   // --- Entry ids

   void checkEntries() {
      for ( auto const & [ what, record ] : records_.entries ) {
         auto const * const rule = findIn( rules_, what );
         if ( rule && ( *rule )->id() != record.id ) {
            Difference difference = about( what, DifferenceKind::recordDiffers, ( *rule )->name() );
            difference.entry = ( *rule )->id();
            difference.shouldBe = entryText( ( *rule )->id() );
            addRecord( std::move( difference ), what, record );
         } else if ( !rule && !isEntry( what, record.id ) ) {
            auto const * const wanted = findIn( wanted_, what );
            Difference difference = about( what, DifferenceKind::recordWithoutRule,
                                           wanted ? wanted->name : std::string() );
            difference.shouldBe =
               wanted ? "the entry of the rule, which the chip does not have" : kAbsent;
            addRecord( std::move( difference ), what, record );
         }
      }
   }

   void addRecord( Difference difference, RuleFor const & what, RecordedEntry const & record ) {
      auto const * const wanted = findIn( wanted_, what );
      difference.field = record.place;
      difference.is = entryText( record.id );
      difference.because = wanted ? wanted->because : whyNot( state_, what );
      found_.push_back( std::move( difference ) );
   }

   // Whether the chip has that entry, as a rule that nothing calls for.
   bool isEntry( RuleFor const & what, U32 id ) const {
      return std::any_of( others_.begin(), others_.end(), [ & ]( EntryAt const & at ) {
         return at.unit == what.unit && at.group == what.group() && at.entry->id() == id;
      } );
   }

   // Per-VNI rules are recorded without their unit, so that the last one's record is all there is.
   bool isRecordable( RuleFor const & what ) const {
      return what.purpose != Purpose::vni || what.unit == state_.modules.rbegin()->first;
   }

   void checkRulesWithoutRecord() {
      for ( auto const & [ what, entry ] : rules_ ) {
         if ( !records_.entries.contains( what ) && isRecordable( what ) ) {
            Difference difference = about( what, DifferenceKind::ruleWithoutRecord, entry->name() );
            difference.entry = entry->id();
            difference.is = "no record";
            difference.shouldBe = fmt::format( "a record of {}", entryText( entry->id() ) );
            difference.because = wanted_.at( what ).because;
            found_.push_back( std::move( difference ) );
         }
      }
   }

   // --- What is recorded beside them, per unit and VTEP

   void checkUnits() {
      bool const isNeeded = state_.isPluginReady && !activeVteps( state_ ).empty();
      for ( U16 const unit : records_.units ) {
         if ( !isNeeded ) {
            add( unit, fmt::format( "tepIpToEntry[{}]", unit ), "present", kAbsent,
                 whyNot( state_, { unit, Purpose::l2Unicast } ) );
         }
      }
   }

   static RuleFor ingress( VtepOn const & on ) { return { on.unit, Purpose::vtep, on.vtep }; }

   std::string because( VtepOn const & on ) const {
      auto const * const wanted = findIn( wanted_, ingress( on ) );
      return wanted ? wanted->because : whyNot( state_, ingress( on ) );
   }

   void addOn( VtepOn const & on, char const * name, std::string is, std::string shouldBe ) {
      add( on.unit, fmt::format( "tepIpToEntry[{}]/{}[{}]", on.unit, name, on.vtep.stringValue() ),
           std::move( is ), std::move( shouldBe ), because( on ) );
   }

   void checkMasks() {
      checkEach( records_.masks, "esPbmp", [ & ]( VtepOn const & on ) {
         auto const * const wanted =
            rules_.contains( ingress( on ) ) ? findIn( wanted_, ingress( on ) ) : nullptr;
         auto const mask = wanted ? wanted->content[ Chip::Action::EgressMask ] : std::nullopt;
         return mask ? Chip::portsText( mask->ports ) : std::string( kAbsent );
      } );
   }

   void checkVpIndices() {
      checkEach( records_.vpIndices, "vpIndex", [ & ]( VtepOn const & on ) {
         bool const isRecordable =
            rules_.contains( ingress( on ) ) ||
            ( records_.vpIndices.contains( on ) && wanted_.contains( ingress( on ) ) );
         return isRecordable ? std::to_string( vpIndexOf( state_, on.vtep ) ) : kAbsent;
      } );
   }

   static std::string textOf( U16 value ) { return std::to_string( value ); }
   static std::string textOf( Brum::PerUnitBitmap const & ports ) {
      return Chip::portsText( ports );
   }

   // Whether every VTEP that has a rule, or a record of that name, has what the record should say.
   template< typename T, typename ShouldBe >
   void checkEach( std::map< VtepOn, T > const & table, char const * name,
                   ShouldBe const & shouldBe ) {
      std::set< VtepOn > places;
      for ( auto const & [ on, value ] : table ) {
         places.insert( on );
      }
      for ( auto const & [ what, entry ] : rules_ ) {
         if ( what.purpose == Purpose::vtep ) {
            places.insert( { what.unit, what.vtep } );
         }
      }
      for ( VtepOn const & on : places ) {
         auto const * const recorded = findIn( table, on );
         std::string const is = recorded ? textOf( *recorded ) : kAbsent;
         if ( std::string const expected = shouldBe( on ); is != expected ) {
            addOn( on, name, is, expected );
         }
      }
   }

   // The list of ports names those that have an entry on record.
   void checkEgressPorts() {
      for ( auto const & [ on, ports ] : records_.egressPorts ) {
         VornalTypes::VornalPortList recorded;
         for ( auto const & [ what, record ] : records_.entries ) {
            if ( what.purpose == Purpose::egressDrop && what.unit == on.unit &&
                 what.vtep == on.vtep ) {
               recorded.portIs( what.port );
            }
         }
         if ( ports != recorded ) {
            addOn( on, "esPortAndEFPEntryIdList", Quelm::textOf( ports ),
                   Quelm::textOf( recorded ) );
         }
      }
   }

   // --- Class ids

   // The units on which the VTEP has its ingress rule.
   std::vector< U16 > unitsOf( IpGenAddr const & vtep ) const {
      std::vector< U16 > units;
      for ( auto const & [ what, entry ] : rules_ ) {
         if ( what.purpose == Purpose::vtep && what.vtep == vtep ) {
            units.push_back( what.unit );
         }
      }
      return units;
   }

   void addVtep( IpGenAddr const & vtep, char const * name, std::string is, std::string shouldBe,
                 DifferenceKind kind = DifferenceKind::recordDiffers ) {
      VtepOn const anywhere{ state_.modules.empty() ? U16{ 0 } : state_.modules.begin()->first,
                             vtep };
      add( {}, fmt::format( "{}[{}]", name, vtep.stringValue() ), std::move( is ),
           std::move( shouldBe ), because( anywhere ), kind );
   }

   void checkClassIds() {
      auto const active = state_.isPluginReady ? activeVteps( state_ ) : std::set< IpGenAddr >();
      for ( auto const & [ vtep, classId ] : records_.classIds ) {
         auto const * const granted = findIn( state_.classIds, vtep );
         std::string const is = Quelm::textOf( classId );
         if ( !active.contains( vtep ) ) {
            addVtep( vtep, "i2eTepIpClassId", is, kAbsent );
         } else if ( granted && *granted != classId ) {
            addVtep( vtep, "i2eTepIpClassId", is, Quelm::textOf( *granted ) );
         }
      }
      for ( auto const & [ vtep, granted ] : state_.classIds ) {
         if ( !records_.classIds.contains( vtep ) && !unitsOf( vtep ).empty() &&
              rowOf( state_.variant ).usesClassIds ) {
            addVtep( vtep, "i2eTepIpClassId", kAbsent, Quelm::textOf( granted ) );
         }
      }
   }

   void checkClassIdUsers() {
      for ( auto const & [ vtep, classId ] : records_.classIds ) {
         auto const * const recorded = findIn( records_.classIdUsers, vtep );
         U32 const is = recorded ? *recorded : 0;
         U32 const shouldBe = static_cast< U32 >( unitsOf( vtep ).size() );
         if ( is != shouldBe ) {
            addVtep( vtep, "i2eTepIpClassIdRefCount", std::to_string( is ),
                     std::to_string( shouldBe ) );
         }
      }
   }

   // Requests are the plug-in's own: it drops those of an earlier run when it starts.
   void checkClassIdRequests() {
      if ( !state_.isPluginReady || !rowOf( state_.variant ).usesClassIds ) {
         return;
      }
      auto const active = activeVteps( state_ );
      for ( IpGenAddr const & vtep : state_.classIdRequests ) {
         if ( !active.contains( vtep ) ) {
            addVtep( vtep, "i2eClassIdIndexConfig/remoteESPeerVtep", "present", kAbsent,
                     DifferenceKind::unneededRequest );
         }
      }
   }

   // --- The queue of per-VNI rules

   // The VNI of the VRF on any tunnel interface; 0 where it has none, nothing for an unknown VRF.
   std::optional< U32 > vniOf( L3::VrfName const & vrf ) const {
      for ( auto const & [ tunnel, vnis ] : state_.vnis ) {
         if ( U32 const * const vni = findIn( vnis, vrf ) ) {
            return *vni;
         }
      }
      return std::nullopt;
   }

   void checkQueue() {
      for ( auto const & [ vrf, vni ] : records_.queue ) {
         auto const mapped = vniOf( vrf );
         RuleFor const what{ state_.modules.empty() ? U16{ 0 } : state_.modules.rbegin()->first,
                             Purpose::vni,
                             {},
                             {},
                             vni };
         bool const isWaiting =
            mapped == vni && wanted_.contains( what ) && !rules_.contains( what );
         if ( !isWaiting ) {
            add( {}, fmt::format( "unprogrammedTcamRulesList[{}]", vrf.stringValue() ),
                 fmt::format( "VNI {}", vni ), kAbsent,
                 mapped ? "there is a rule, or none is called for"
                        : "no tunnel interface has the VRF any more",
                 mapped ? DifferenceKind::recordDiffers : DifferenceKind::leftBehind );
         }
      }
   }

   // A record that belongs to no single rule.
   void add( std::optional< U32 > unit, std::string place, std::string is, std::string shouldBe,
             std::string why, DifferenceKind kind = DifferenceKind::recordDiffers ) {
      Difference difference;
      difference.kind = kind;
      difference.unit = unit;
      difference.field = std::move( place );
      difference.is = std::move( is );
      difference.shouldBe = std::move( shouldBe );
      difference.because = std::move( why );
      found_.push_back( std::move( difference ) );
   }

   State const & state_;
   Records const & records_;
   WantedRules const & wanted_;
   std::map< RuleFor, Chip::Entry const * > const & rules_;
   std::vector< EntryAt > const & others_;
   Differences & found_;
};

}  // namespace

void compareRecords( Sides const & sides, Differences & found ) {
   RecordCheck( sides, found ).check();
}

}  // namespace Audit
