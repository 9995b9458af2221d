// Compares the plug-in's records with the state and the chip.

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
            Difference difference =
               differenceFor( what, DifferenceKind::recordDiffers, ( *rule )->name() );
            difference.entry = ( *rule )->id();
            difference.expected = entryText( ( *rule )->id() );
            addRecord( std::move( difference ), what, record );
         } else if ( !rule && !isEntry( what, record.id ) ) {
            auto const * const wanted = findIn( wanted_, what );
            Difference difference = differenceFor( what, DifferenceKind::recordWithoutRule,
                                                   wanted ? wanted->name : std::string() );
            difference.expected =
               wanted ? "the entry of the rule, which the chip does not have" : kAbsent;
            addRecord( std::move( difference ), what, record );
         }
      }
   }

   void addRecord( Difference difference, RuleFor const & what, RecordedEntry const & record ) {
      auto const * const wanted = findIn( wanted_, what );
      difference.field = record.place;
      difference.actual = entryText( record.id );
      difference.because = wanted ? wanted->because : whyUnexpected( state_, what );
      found_.push_back( std::move( difference ) );
   }

   // The chip has this entry, and no expected rule has taken it.
   bool isEntry( RuleFor const & what, U32 id ) const {
      return std::any_of( others_.begin(), others_.end(), [ & ]( EntryAt const & at ) {
         return at.unit == what.unit && at.group == what.group() && at.entry->id() == id;
      } );
   }

   // The plug-in records per-VNI rules without their unit, so only the last unit's record survives.
   bool isRecordable( RuleFor const & what ) const {
      return what.purpose != Purpose::vni || what.unit == state_.modules.rbegin()->first;
   }

   void checkRulesWithoutRecord() {
      for ( auto const & [ what, entry ] : rules_ ) {
         if ( !records_.entries.contains( what ) && isRecordable( what ) ) {
            Difference difference =
               differenceFor( what, DifferenceKind::ruleWithoutRecord, entry->name() );
            difference.entry = entry->id();
            difference.actual = "no record";
            difference.expected = fmt::format( "a record of {}", entryText( entry->id() ) );
            difference.because = wanted_.at( what ).because;
            found_.push_back( std::move( difference ) );
         }
      }
   }

   // --- Other records, per unit and VTEP

   void checkUnits() {
      bool const isNeeded = state_.isPluginReady && !activeVteps( state_ ).empty();
      for ( U16 const unit : records_.units ) {
         if ( !isNeeded ) {
            add( unit, fmt::format( "tepIpToEntry[{}]", unit ), "present", kAbsent,
                 whyUnexpected( state_, { unit, Purpose::l2Unicast } ) );
         }
      }
   }

   static RuleFor ingress( VtepOn const & on ) { return { on.unit, Purpose::vtep, on.vtep }; }

   std::string because( VtepOn const & on ) const {
      auto const * const wanted = findIn( wanted_, ingress( on ) );
      return wanted ? wanted->because : whyUnexpected( state_, ingress( on ) );
   }

   void addOn( VtepOn const & on, char const * name, std::string actual, std::string expected ) {
      add( on.unit, fmt::format( "tepIpToEntry[{}]/{}[{}]", on.unit, name, on.vtep.stringValue() ),
           std::move( actual ), std::move( expected ), because( on ) );
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

   // Checks the value recorded for every VTEP that has a rule, or such a record.
   template< typename T, typename ExpectedOn >
   void checkEach( std::map< VtepOn, T > const & table, char const * name,
                   ExpectedOn const & expectedOn ) {
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
         std::string const actual = recorded ? textOf( *recorded ) : kAbsent;
         if ( std::string const expected = expectedOn( on ); actual != expected ) {
            addOn( on, name, actual, expected );
         }
      }
   }

   // The list of ports must name the ports that have an entry on record.
   void checkEgressPorts() {
      std::map< VtepOn, VornalTypes::VornalPortList > withEntry;
      for ( auto const & [ what, record ] : records_.entries ) {
         if ( what.purpose == Purpose::egressDrop ) {
            withEntry[ { what.unit, what.vtep } ].portIs( what.port );
         }
      }
      for ( auto const & [ on, ports ] : records_.egressPorts ) {
         VornalTypes::VornalPortList const & recorded = withEntry[ on ];
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
      for ( auto const & [ unit, module ] : state_.modules ) {
         if ( rules_.contains( { unit, Purpose::vtep, vtep } ) ) {
            units.push_back( unit );
         }
      }
      return units;
   }

   void addVtep( IpGenAddr const & vtep, char const * name, std::string actual,
                 std::string expected, DifferenceKind kind = DifferenceKind::recordDiffers ) {
      VtepOn const anywhere{ state_.modules.empty() ? U16{ 0 } : state_.modules.begin()->first,
                             vtep };
      add( {}, fmt::format( "{}[{}]", name, vtep.stringValue() ), std::move( actual ),
           std::move( expected ), because( anywhere ), kind );
   }

   void checkClassIds() {
      auto const active = state_.isPluginReady ? activeVteps( state_ ) : std::set< IpGenAddr >();
      for ( auto const & [ vtep, classId ] : records_.classIds ) {
         auto const * const granted = findIn( state_.classIds, vtep );
         std::string const actual = Quelm::textOf( classId );
         if ( !active.contains( vtep ) ) {
            addVtep( vtep, "i2eTepIpClassId", actual, kAbsent );
         } else if ( granted && *granted != classId ) {
            addVtep( vtep, "i2eTepIpClassId", actual, Quelm::textOf( *granted ) );
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
         U32 const actual = recorded ? *recorded : 0;
         U32 const expected = static_cast< U32 >( unitsOf( vtep ).size() );
         if ( actual != expected ) {
            addVtep( vtep, "i2eTepIpClassIdRefCount", std::to_string( actual ),
                     std::to_string( expected ) );
         }
      }
   }

   // The plug-in owns its requests: it drops those of an earlier run when it starts.
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

   // The VRF's VNI on any tunnel interface; 0 where it has none, nothing for an unknown VRF.
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
                 mapped ? "there is a rule, or none is expected"
                        : "no tunnel interface has the VRF any more",
                 mapped ? DifferenceKind::recordDiffers : DifferenceKind::leftBehind );
         }
      }
   }

   // Adds a difference about a record that belongs to no single rule.
   void add( std::optional< U32 > unit, std::string place, std::string actual, std::string expected,
             std::string why, DifferenceKind kind = DifferenceKind::recordDiffers ) {
      Difference difference;
      difference.kind = kind;
      difference.unit = unit;
      difference.field = std::move( place );
      difference.actual = std::move( actual );
      difference.expected = std::move( expected );
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
