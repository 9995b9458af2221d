#include <CommandLine/RecordedRun.h>

#include <algorithm>

#include <fmt/format.h>

#include <Story/InputError.h>
#include <Story/Wording.h>

namespace CommandLine {

RecordedRun::RecordedRun( std::filesystem::path file )
      : file_( std::move( file ) ), reader_( file_ ), inputs_( reader_ ) {
   U64 now = 0;
   auto kind = Story::StepKind::StartUp;
   while ( auto const event = reader_.nextEvent() ) {
      std::visit( Story::Overloaded{
                     [ & ]( Story::ClockMoved const & moved ) { now = moved.time; },
                     [ & ]( Story::StepBegins const & step ) { kind = step.kind; },
                     [ & ]( Story::StepEnds const & step ) {
                        if ( kind != Story::StepKind::Teardown ) {
                           add( { step.number, now } );
                        }
                     },
                     [ & ]( Story::PluginLoaded const & loaded ) { plugin_ = loaded.file; },
                     []( auto const & ) {} },
                  *event );
   }
   if ( ends_.empty() && !reader_.isComplete() ) {
      throw Story::InputError( file_.string() + ": the record holds no whole step" +
                               reader_.damageText() + "; record the run again" );
   }
}

void RecordedRun::add( StepEnd const & end ) {
   constexpr std::size_t kMost = 1'000'000;  // a scenario has fewer
   if ( ends_.size() == kMost ) {
      throw Story::InputError( file_.string() +
                               ": the record has more than a million steps, and no scenario has so "
                               "many; ask for a record that 'vornal run --record' has written" );
   }
   ends_.push_back( end );
}

std::optional< U32 > RecordedRun::lastStep() const {
   if ( reader_.isComplete() ) {
      return setup().lastStep;
   }
   return ends_.back().step;
}

U32 RecordedRun::stepAt( U64 time ) const {
   if ( ends_.empty() || ends_.back().time == 0 ) {
      throw Story::InputError(
         "the clock of " + file_.string() +
         " stands at 0 s in all of its steps; give a step in place of a time" );
   }
   auto const later = std::find_if( ends_.begin(), ends_.end(),
                                    [ & ]( StepEnd const & end ) { return end.time > time; } );
   return later == ends_.begin() ? 0 : std::prev( later )->step;
}

SameStory::SameStory( RecordedRun const & record, U32 lastStep )
      : record_( record ),
        reader_( record.file() ),
        comparison_( reader_ ),
        lastStep_( lastStep ) {}

void SameStory::onEvent( Story::Event const & event ) {
   if ( isOver_ ) {
      return;
   }
   try {
      comparison_.onEvent( event );
      auto const * const step = std::get_if< Story::StepEnds >( &event );
      isOver_ = step && step->number == lastStep_;
   } catch ( Record::Comparison::Over const & ) {
      isOver_ = true;
   }
}

void SameStory::check() const {
   if ( comparison_.result() != Record::Comparison::Result::different ) {
      return;
   }
   std::string const file = record_.file().string();
   throw Story::InputError( fmt::format(
      "{}: this run is not the recorded one from {} on, as 'vornal replay {}' shows; ask "
      "after an earlier step, or give the plug-in of the record, {}, by --plugin",
      file, nameOf( comparison_.step() ), file, record_.plugin() ) );
}

}  // namespace CommandLine
