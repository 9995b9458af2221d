// Names the ways in which a sequence ends other than well.
//
// Two sequences end alike when the same assertion in the same function stops them, or when their
// rules differ from the state in the same kind of way, or the same kind of frame is kept back by
// the same kind of rule: names, addresses and numbers do not count.
#pragma once

#include <Audit/Audit.h>
#include <Exploring/SharedFindings.h>
#include <Probing/Probes.h>
#include <Process/LastWords.h>

namespace Exploring {

// Those that have no known cause, each kind once.
void addDifferences( Audit::Report const & report, SharedFindings & findings,
                     Sequence const & sequence, U64 weight );

// Each kind of frame that goes wrong at rest, and each rule, once.
void addLasting( std::set< Probing::Lasting > const & lasting, SharedFindings & findings,
                 Sequence const & sequence, U64 weight );

// The end of a process by a signal, or by itself; `status` is that of waitpid().
void addStop( int status, Process::LastWords const & words, SharedFindings & findings,
              Sequence const & sequence, U64 weight );

}  // namespace Exploring
