// The objects that expectations are compared with.
#pragma once

#include <Audit/Audit.h>
#include <Expectations/Record.h>
#include <FieldProcessor/Unit.h>
#include <StateDatabase/Finder.h>
#include <Vornal/Dependency.h>

namespace Expectations {

// All members must outlive their use.
struct Evidence {
   StateDatabase::Finder const & finder;
   Chip::Units & units;
   Record const & record;
   Vornal::DependencyPoint const & pluginPoint;
   Audit::Auditor const & auditor;
};

}  // namespace Expectations
