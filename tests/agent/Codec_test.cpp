#include <Story/Codec.h>

#include <random>
#include <set>

#include <gtest/gtest.h>

#include <OneOfEach.h>
#include <Story/EventForms.h>

namespace {

using Story::Event;
namespace Binary = Story::Binary;

bool isRefused( std::string const & bytes ) {
   try {
      Story::decoded( bytes );
      return false;
   } catch ( std::runtime_error const & ) {
      return true;
   }
}

TEST( Codec, HasAnExampleOfEveryEvent ) {
   std::set< std::size_t > kinds;
   for ( Event const & event : OneOfEach::events() ) {
      kinds.insert( event.index() );
   }
   EXPECT_EQ( kinds.size(), std::variant_size_v< Event > );
}

TEST( Codec, ReadsBackWhatItWritesForEveryEvent ) {
   for ( Event const & event : OneOfEach::events() ) {
      std::string const bytes = Story::encoded( event );
      Event const read = Story::decoded( bytes );

      EXPECT_EQ( read.index(), event.index() );
      EXPECT_EQ( Story::encoded( read ), bytes ) << "event " << event.index();
   }
}

// --- Every member is listed among the fields

// How many members a structure has: the most that its braces take.
template< typename T > consteval std::size_t memberCount() {
   if constexpr ( requires { T{ {}, {}, {}, {}, {}, {}, {}, {}, {}, {} }; } ) {
      return 10;
   } else if constexpr ( requires { T{ {}, {}, {}, {}, {}, {}, {}, {}, {} }; } ) {
      return 9;
   } else if constexpr ( requires { T{ {}, {}, {}, {}, {}, {}, {}, {} }; } ) {
      return 8;
   } else if constexpr ( requires { T{ {}, {}, {}, {}, {}, {}, {} }; } ) {
      return 7;
   } else if constexpr ( requires { T{ {}, {}, {}, {}, {}, {} }; } ) {
      return 6;
   } else if constexpr ( requires { T{ {}, {}, {}, {}, {} }; } ) {
      return 5;
   } else if constexpr ( requires { T{ {}, {}, {}, {} }; } ) {
      return 4;
   } else if constexpr ( requires { T{ {}, {}, {} }; } ) {
      return 3;
   } else if constexpr ( requires { T{ {}, {} }; } ) {
      return 2;
   } else {
      return 1;
   }
}

template< typename T > std::size_t fieldCount() {
   std::size_t count = 0;
   T const structure{};
   Story::Fields< T >::list( structure, [ & ]( char const *, auto const &... ) { ++count; } );
   return count;
}

// A field that is not listed would be lost in both directions, and no text would tell.
TEST( Codec, KnowsEveryMemberOfEveryEvent ) {
   for ( Event const & event : OneOfEach::events() ) {
      std::visit(
         []< typename T >( T const & ) {
            EXPECT_EQ( fieldCount< T >(), memberCount< T >() ) << T::kName;
         },
         event );
   }
   EXPECT_EQ( fieldCount< Story::Assertion >(), memberCount< Story::Assertion >() );
   EXPECT_EQ( fieldCount< Story::Difference >(), memberCount< Story::Difference >() );
   EXPECT_EQ( fieldCount< Story::EntityTree >(), memberCount< Story::EntityTree >() );
   EXPECT_EQ( fieldCount< Story::EntityItem >(), memberCount< Story::EntityItem >() );
   EXPECT_EQ( fieldCount< Story::EntityAttribute >(), memberCount< Story::EntityAttribute >() );
}

// The event as the other process has it.
template< typename T > T sent( T const & event ) {
   return std::get< T >( Story::decoded( Story::encoded( event ) ) );
}

TEST( Codec, KeepsEveryFieldOfRulesCallsAndFrames ) {
   EXPECT_EQ( sent( Story::RuleIs{ OneOfEach::someRule() } ).rule, OneOfEach::someRule() );
   EXPECT_EQ( sent( Story::RuleIs{} ).rule, Chip::Rule() );
   EXPECT_EQ( sent( Story::CallMade{ OneOfEach::someCall() } ).call, OneOfEach::someCall() );
   EXPECT_EQ( sent( Story::FrameForwarded{ 7, OneOfEach::someFrame() } ).frame,
              OneOfEach::someFrame() );
   EXPECT_EQ( sent( Story::FrameForwarded{} ).frame, Chip::FrameStory() );
}

TEST( Codec, KeepsAbsentValuesApartFromEmptyOnes ) {
   auto const read = sent( Story::PublishedChange{ "/p", "a", "k", "", std::nullopt } );

   EXPECT_EQ( read.from, "" );
   EXPECT_EQ( read.to, std::nullopt );
}

TEST( Codec, KeepsTextsOfAnyBytes ) {
   std::string const text( "a\nb\0c\xff", 6 );
   EXPECT_EQ( sent( Story::OutputLine{ text } ).text, text );
}

TEST( Codec, KeepsNumbersUpToTheirLimits ) {
   for ( int const level :
         { 0, -1, 1, std::numeric_limits< int >::min(), std::numeric_limits< int >::max() } ) {
      EXPECT_EQ( sent( Story::Traced{ "h", level, "" } ).level, level );
   }
   for ( U64 const time : { U64{ 0 }, U64{ 127 }, U64{ 128 }, ~U64{ 0 } } ) {
      EXPECT_EQ( sent( Story::RunEnds{ time } ).time, time );
   }
}

// --- Damage

TEST( Codec, RefusesEveryEventThatIsCutShortOrHasBytesLeftOver ) {
   for ( Event const & event : OneOfEach::events() ) {
      std::string const bytes = Story::encoded( event );
      for ( std::size_t size = 0; size < bytes.size(); ++size ) {
         EXPECT_TRUE( isRefused( bytes.substr( 0, size ) ) ) << event.index() << ", " << size;
      }
      EXPECT_TRUE( isRefused( bytes + '\0' ) ) << event.index();
   }
}

// Each event has one form. So whatever is read from damaged bytes is an event that has them.
TEST( Codec, RefusesDamagedBytesUnlessTheyAreThoseOfAnotherEvent ) {
   constexpr unsigned kSeed = 20;
   SCOPED_TRACE( "seed " + std::to_string( kSeed ) );
   std::mt19937 random( kSeed );
   std::size_t refused = 0;
   for ( Event const & event : OneOfEach::events() ) {
      std::string const bytes = Story::encoded( event );
      for ( int n = 0; n < 2000; ++n ) {
         std::string damaged = bytes;
         for ( auto changes = random() % 3 + 1; changes > 0; --changes ) {
            damaged[ random() % damaged.size() ] = static_cast< char >( random() );
         }
         if ( isRefused( damaged ) ) {
            ++refused;
         } else {
            ASSERT_EQ( Story::encoded( Story::decoded( damaged ) ), damaged );
         }
      }
   }
   EXPECT_GT( refused, 10'000U );
}

TEST( Codec, RefusesWhatStandsForNoValueOfAnEnumeration ) {
   auto const read = []< typename T >( T, U64 number ) {
      std::string bytes;
      Binary::Out( bytes ).number( number );
      Binary::In in( bytes );
      return Binary::read< T >( in );
   };
   EXPECT_EQ( read( Chip::Verdict(), Chip::kVerdicts - 1 ), Chip::Verdict::NotDesignated );
   EXPECT_THROW( read( Chip::Verdict(), Chip::kVerdicts ), std::runtime_error );
   EXPECT_THROW( read( Chip::DropReason(), Chip::kDropReasons ), std::runtime_error );
   EXPECT_THROW( read( Chip::FrameKind(), Chip::kFrameKinds.size() ), std::runtime_error );
   EXPECT_THROW( read( Story::StepKind(), 4 ), std::runtime_error );
   EXPECT_THROW( read( Story::PluginPass::State(), 4 ), std::runtime_error );
   EXPECT_THROW( read( Kiv::Attribute::Kind(), 7 ), std::runtime_error );
   EXPECT_THROW( read( Story::DifferenceKind(), Story::differenceRows().size() ),
                 std::runtime_error );
   EXPECT_THROW( read( bool(), 2 ), std::runtime_error );
}

TEST( Codec, RefusesANumberWithSeveralForms ) {
   for ( std::string const & overlong :
         { std::string( "\x80\0", 2 ), std::string( "\xff\xff\xff\xff\xff\xff\xff\xff\xff\x02" ),
           std::string( 11, '\xff' ) } ) {
      Binary::In in( overlong );
      EXPECT_THROW( in.number(), std::runtime_error );
   }
}

TEST( Codec, RefusesAListThatClaimsMoreThanItsBytesCanHold ) {
   std::string bytes;
   Binary::Out( bytes ).number( U64{ 1 } << 40U );
   Binary::In in( bytes );
   EXPECT_THROW( Binary::read< std::vector< std::string > >( in ), std::runtime_error );
}

Event nested( int levels ) {
   Story::Node node{ "innermost", "" };
   for ( int n = 1; n < levels; ++n ) {
      Story::Node outer{ "outer", "" };
      outer.children.push_back( std::move( node ) );
      node = std::move( outer );
   }
   return Story::FrameExplained{ std::move( node ) };
}

TEST( Codec, RefusesWhatIsNestedWithoutEnd ) {
   // The event is a level itself.
   EXPECT_FALSE( isRefused( Story::encoded( nested( Binary::In::kDeepest - 1 ) ) ) );
   EXPECT_TRUE( isRefused( Story::encoded( nested( Binary::In::kDeepest ) ) ) );
}

// --- The layout

struct Sample {
   U32 number = 0;
   static void fields( auto & sample, auto && field ) { field( "number", sample.number ); }
};
struct OtherName {
   U32 other = 0;
   static void fields( auto & sample, auto && field ) { field( "other", sample.other ); }
};
struct OtherType {
   U64 number = 0;
   static void fields( auto & sample, auto && field ) { field( "number", sample.number ); }
};

template< typename T > std::string layoutOf() {
   Binary::Layout layout;
   Binary::describe< T >( layout );
   return layout.text();
}

TEST( Codec, TellsTheLayoutOfFieldsByNameAndType ) {
   EXPECT_EQ( layoutOf< Sample >(), "{number:u4,}" );
   EXPECT_NE( layoutOf< Sample >(), layoutOf< OtherName >() );
   EXPECT_NE( layoutOf< Sample >(), layoutOf< OtherType >() );
   EXPECT_EQ( layoutOf< Story::Node >(),
              "{kind:text,text:text,values:list of {name:text,cell:|nothing|u8|text|list of "
              "text,},children:list of ^0,}" );
   EXPECT_NE( layoutOf< Event >().find( "|stepEnds{number:u4,}" ), std::string::npos );
   EXPECT_NE( Binary::fingerprintOf< Sample >(), Binary::fingerprintOf< OtherName >() );
}

}  // namespace
