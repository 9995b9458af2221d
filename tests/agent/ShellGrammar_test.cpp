// What may follow in a step that is not complete.
#include <Shell/StepGrammar.h>

#include <gtest/gtest.h>

namespace {

using Shell::expectedAt;
using Shell::Named;
using Names = std::set< Named >;
using Texts = std::vector< std::string >;

bool has( Texts const & words, std::string const & word ) {
   return std::find( words.begin(), words.end(), word ) != words.end();
}

TEST( ShellGrammar, KnowsTheWordsOfAMapping ) {
   auto const expected = expectedAt( "withdraw: { vteps: [ 10.0.0.2 ], se" );
   EXPECT_TRUE( has( expected.words, "segments: " ) );
   EXPECT_FALSE( has( expected.words, "vteps: " ) );  // it is there
   EXPECT_EQ( expected.begin, 33U );
}

TEST( ShellGrammar, KnowsWhichNamesAPlaceTakes ) {
   EXPECT_EQ( expectedAt( "withdraw: { vteps: [ 10." ).names, Names{ Named::vtep } );
   EXPECT_EQ( expectedAt( "withdraw: { vteps: [ 10.0.0.2, " ).names, Names{ Named::vtep } );
   EXPECT_EQ( expectedAt( "publish: { port-channels: { " ).names, Names{ Named::portChannel } );
   EXPECT_EQ( expectedAt( "publish: { port-channels: { Port-Channel2: [ " ).names,
              Names{ Named::ethernet } );
   EXPECT_EQ( expectedAt( "frame: { on: E" ).names,
              ( Names{ Named::ethernet, Named::portChannel } ) );
   EXPECT_EQ( expectedAt( "withdraw: { tunnel-interfaces: { V" ).names, Names{ Named::vxlan } );
   EXPECT_EQ( expectedAt( "frames: { capture: ../c" ).names, Names{ Named::file } );
}

TEST( ShellGrammar, KnowsChoicesAndBrackets ) {
   EXPECT_EQ( expectedAt( "verify: " ).words, ( Texts{ "audit", "plug-in", "both" } ) );
   EXPECT_EQ( expectedAt( "withdraw: " ).words, Texts{ "{ " } );
   EXPECT_TRUE( has( expectedAt( "expect: { frames: { kind: " ).words, "broadcast" ) );
   EXPECT_TRUE( has( expectedAt( "expect: { frames: { kind: [ unk" ).words, "unknown-unicast" ) );
   EXPECT_TRUE( has( expectedAt( "expect: { rules: { gr" ).words, "group: " ) );
   EXPECT_TRUE( has( expectedAt( "expect: { rules: { qualifiers: { " ).words, "SrcVxlanGport: " ) );
}

TEST( ShellGrammar, ExpectsAValueOnlyWhenABlankStandsBehindTheColon ) {
   auto const expected = expectedAt( "expect: { frames: { kind:" );
   EXPECT_TRUE( has( expected.words, "kind: " ) );
   EXPECT_FALSE( has( expected.words, "broadcast" ) );  // "kind:broadcast" is one word
   EXPECT_EQ( expected.begin, 20U );
   EXPECT_TRUE( has( expectedAt( "withdraw:" ).words, "withdraw: " ) );
}

TEST( ShellGrammar, KnowsWhoseAttributeIsMeant ) {
   auto const expected = expectedAt( "set: { entity: /evpn/status, attribute: seg" );
   EXPECT_EQ( expected.names, Names{ Named::attribute } );
   EXPECT_EQ( expected.entity, "/evpn/status" );
   EXPECT_EQ( expectedAt( "set: { entity: \"/a/b[c]\", attribute: " ).entity, "/a/b[c]" );
   EXPECT_EQ( expectedAt( "set: { entity: \"/evpn/st" ).names, Names{ Named::path } );
   EXPECT_TRUE( expectedAt( "set: { entity: /evpn/st" ).isInFlow );
   EXPECT_FALSE( expectedAt( "set: { entity: \"/evpn/st" ).isInFlow );
}

TEST( ShellGrammar, ReadsLinesByTheirIndentation ) {
   EXPECT_EQ( expectedAt( "withdraw:\n  vteps: [ " ).names, Names{ Named::vtep } );
   EXPECT_TRUE( has( expectedAt( "withdraw:\n  " ).words, "segments: " ) );
   EXPECT_TRUE( has( expectedAt( "withdraw:\n  vteps: [ 10.0.0.2 ]\n  se" ).words, "segments: " ) );
   EXPECT_TRUE( has( expectedAt( "wi" ).words, "withdraw: " ) );
}

TEST( ShellGrammar, ExpectsNothingInATextThatIsNoStep ) {
   EXPECT_TRUE( expectedAt( "]]]" ).words.empty() );
   EXPECT_TRUE( expectedAt( "nonsense: { x: [ " ).words.empty() );
   EXPECT_TRUE( expectedAt( "note: any text" ).words.empty() );
}

TEST( ShellGrammar, DescribesSteps ) {
   EXPECT_EQ( Shell::purposeOfStep( "note" ), "A line of the story." );
   EXPECT_TRUE( Shell::purposeOfStep( "withdraw" )->starts_with( "Other agents withdraw" ) );
   EXPECT_EQ( Shell::purposeOfStep( "run" ), std::nullopt );
}

}  // namespace
