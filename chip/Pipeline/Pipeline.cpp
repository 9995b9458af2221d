#include <Pipeline/Pipeline.h>

#include <Pipeline/Engine.h>

namespace Chip {

Pipeline::Pipeline( Units const & units ) : engine_( std::make_unique< Engine >( units ) ) {}

Pipeline::~Pipeline() = default;

void Pipeline::forwardingIs( ForwardingConfig const & config ) {
   engine_->forwardingIs( config );
}

ForwardingConfig const & Pipeline::forwarding() const {
   return engine_->forwarding();
}

FrameStory const & Pipeline::forward( VornalTypes::VornalPort arrival, Bytes frame,
                                      Transmitter & transmitter ) {
   return engine_->forward( arrival, frame, transmitter );
}

PipelineCounters const & Pipeline::counters() const {
   return engine_->counters();
}

std::size_t Pipeline::learned() const {
   return engine_->learned();
}

std::vector< LearnedMac > Pipeline::macs() const {
   return engine_->macs();
}

Rehearsal Pipeline::rehearse( VornalTypes::VornalPort arrival, Bytes frame ) const {
   return engine_->rehearse( arrival, frame );
}

}  // namespace Chip
