// What questions are answered from: the switch between two turns, and its past.
#pragma once

#include <Audit/Audit.h>
#include <FieldProcessor/Unit.h>
#include <Questions/Chronicle.h>
#include <StateDatabase/Finder.h>
#include <Traffic/Injector.h>

namespace Questions {

// Everything must outlive its use.
struct Context {
   Chip::Units const & units;
   Audit::Auditor const & auditor;
   Traffic::Injector const & traffic;
   Chronicle const & chronicle;
   StateDatabase::Finder const & finder;
};

}  // namespace Questions
