// The switch of a scenario: units, TCAM groups, variant, slice.
#include <gtest/gtest.h>

#include <ScenarioTexts.h>

namespace {

using namespace ScenarioTexts;
using Scenario::Variant;

// A switch of three required words, in lines 1 to 5, and `more` of its own from line 6 on.
std::string switchWith( std::string const & more ) {
   return "scenario: switch\n"
          "switch:\n"
          "   name: leaf1\n"
          "   variant: egress-mask\n"
          "   units: { 0: { module: 1 } }\n" +
          more;
}

std::string unitsOf( std::string const & units ) {
   return "scenario: switch\n"
          "switch:\n"
          "   name: leaf1\n"
          "   variant: egress-mask\n"
          "   units: " +
          units + "\n";
}

TEST( ScenarioSwitch, TakesNameAndVariant ) {
   EXPECT_EQ( read( switchWith( "" ) ).device.name, "leaf1" );
   EXPECT_EQ( read( switchWith( "" ) ).device.variant, Variant::egressMask );
   EXPECT_EQ( read( "scenario: s\n"
                    "switch: { name: leaf1, variant: class-id, units: { 0: { module: 1 } } }\n" )
                 .device.variant,
              Variant::classId );
}

TEST( ScenarioSwitch, IsSliceOneUnlessItSaysOtherwise ) {
   EXPECT_EQ( read( switchWith( "" ) ).device.slice, "1" );
   EXPECT_EQ( read( switchWith( "   slice: 3\n" ) ).device.slice, "3" );
   EXPECT_EQ( read( switchWith( "   slice: Linecard5-1\n" ) ).device.slice, "Linecard5-1" );
}

TEST( ScenarioSwitch, ListsUnitsInTheirOrder ) {
   auto const units = read( unitsOf( "{ 0x10: { module: 3 }, 2: { module: 0 } }" ) ).device.units;
   ASSERT_EQ( units.size(), 2U );
   EXPECT_EQ( units[ 0 ].number, 2 );
   EXPECT_EQ( units[ 0 ].module, 0 );
   EXPECT_EQ( units[ 1 ].number, 16 );
   EXPECT_EQ( units[ 1 ].module, 3 );
}

TEST( ScenarioSwitch, HasTheUsualTcamUnlessItSaysOtherwise ) {
   Scenario::Tcam const tcam = read( switchWith( "   tcam: { ingress: 4 }\n" ) ).device.tcam;
   EXPECT_EQ( tcam.ingress, 4U );
   EXPECT_EQ( tcam.egress, 256U );
}

TEST( ScenarioSwitch, CanLackATcamGroup ) {
   EXPECT_EQ( read( switchWith( "   tcam: { egress: none }\n" ) ).device.tcam.egress,
              std::nullopt );
}

// --- what is refused

TEST( ScenarioSwitch, IsAMapping ) {
   EXPECT_EQ( problems( "scenario: s\nswitch: leaf1\n" ),
              "leaf.yaml:2: switch is text; a mapping is expected, of name, slice, variant, units, "
              "tcam, class-ids, l3-multicast-exempt, interfaces and port-channels" );
   EXPECT_EQ(
      problems( "scenario: s\nswitch:\n" ),
      "leaf.yaml:2: switch is empty; a mapping is expected, of name, slice, variant, units, "
      "tcam, class-ids, l3-multicast-exempt, interfaces and port-channels" );
}

TEST( ScenarioSwitch, NeedsNameVariantAndUnits ) {
   EXPECT_EQ(
      problems( "scenario: s\nswitch: { slice: 1 }\n" ),
      "leaf.yaml:2: 'name' is missing in switch; give it, as in 'name: leaf1'\n"
      "leaf.yaml:2: 'variant' is missing in switch; give it, as in 'variant: egress-mask'\n"
      "leaf.yaml:2: 'units' is missing in switch; give it, as in 'units: { 0: { module: 1 } }'" );
}

TEST( ScenarioSwitch, RefusesAnUnknownVariant ) {
   EXPECT_EQ( problems( "scenario: s\n"
                        "switch:\n"
                        "   name: leaf1\n"
                        "   variant: egress-msk\n"
                        "   units: { 0: { module: 1 } }\n" ),
              "leaf.yaml:4: variant is 'egress-msk'; did you mean 'egress-mask'?" );
   EXPECT_EQ( problems( "scenario: s\n"
                        "switch:\n"
                        "   name: leaf1\n"
                        "   variant: 2\n"
                        "   units: { 0: { module: 1 } }\n" ),
              "leaf.yaml:4: variant is '2'; egress-mask or class-id is expected" );
}

TEST( ScenarioSwitch, RefusesASliceThatIsNoPartOfAPath ) {
   EXPECT_EQ(
      problems( switchWith( "   slice: a/b\n" ) ),
      "leaf.yaml:6: slice is 'a/b'; a text without '/' and blanks is expected, as it is part of "
      "mount paths" );
}

TEST( ScenarioSwitch, RefusesUnitsThatAreNoMapping ) {
   EXPECT_EQ( problems( unitsOf( "[ 0, 1 ]" ) ),
              "leaf.yaml:5: units is a list; a mapping is expected" );
}

TEST( ScenarioSwitch, RefusesNoUnitAtAll ) {
   EXPECT_EQ( problems( unitsOf( "{}" ) ),
              "leaf.yaml:5: units is empty; give one at least, as in '0: { module: 1 }'" );
}

TEST( ScenarioSwitch, RefusesAUnitThatIsNoNumber ) {
   EXPECT_EQ( problems( unitsOf( "{ first: { module: 1 } }" ) ),
              "leaf.yaml:5: unit is 'first'; a whole number from 0 to 65535 is expected" );
   EXPECT_EQ( problems( unitsOf( "{ 65536: { module: 1 } }" ) ),
              "leaf.yaml:5: unit is '65536'; a whole number from 0 to 65535 is expected" );
}

TEST( ScenarioSwitch, RefusesAUnitGivenTwice ) {
   EXPECT_EQ( problems( unitsOf( "{ 1: { module: 1 },\n"
                                 "            0x1: { module: 2 } }" ) ),
              "leaf.yaml:6: 1 is given twice, first in line 5; keep one of them" );
}

TEST( ScenarioSwitch, RefusesAUnitWithoutModule ) {
   EXPECT_EQ( problems( unitsOf( "{ 0: {} }" ) ),
              "leaf.yaml:5: 'module' is missing in unit 0; give it, as in 'module: 1'" );
}

TEST( ScenarioSwitch, RefusesAModuleThatIsNoNumber ) {
   EXPECT_EQ( problems( unitsOf( "{ 0: { module: 65536 } }" ) ),
              "leaf.yaml:5: module is '65536'; a whole number from 0 to 65535 is expected" );
   EXPECT_EQ( problems( unitsOf( "{ 0: { module: -1 } }" ) ),
              "leaf.yaml:5: module is '-1'; a whole number from 0 to 65535 is expected" );
   EXPECT_EQ( problems( unitsOf( "{ 0: { module: 010 } }" ) ),
              "leaf.yaml:5: module is '010'; a whole number from 0 to 65535 is expected" );
   EXPECT_EQ(
      problems( unitsOf( "{ 0: { module: \"1\" } }" ) ),
      "leaf.yaml:5: module is '1'; a whole number from 0 to 65535 is expected, without quotes" );
}

TEST( ScenarioSwitch, RefusesAModuleOfTwoUnits ) {
   EXPECT_EQ( problems( unitsOf( "{ 0: { module: 1 },\n"
                                 "            1: { module: 1 } }" ) ),
              "leaf.yaml:6: module 1 is unit 0's already; give each unit its own" );
}

TEST( ScenarioSwitch, RefusesATcamGroupThatItDoesNotKnow ) {
   EXPECT_EQ( problems( switchWith( "   tcam: { ingres: 4 }\n" ) ),
              "leaf.yaml:6: unknown word 'ingres' in tcam; did you mean 'ingress'?" );
}

TEST( ScenarioSwitch, RefusesANumberOfEntriesThatIsNone ) {
   EXPECT_EQ(
      problems( switchWith( "   tcam: { ingress: many }\n" ) ),
      "leaf.yaml:6: ingress is 'many'; a whole number from 0 to 65536 is expected, or none" );
   EXPECT_EQ(
      problems( switchWith( "   tcam: { egress: 65537 }\n" ) ),
      "leaf.yaml:6: egress is '65537'; a whole number from 0 to 65536 is expected, or none" );
}

}  // namespace
