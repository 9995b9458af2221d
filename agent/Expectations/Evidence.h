// What expectations are compared with.
#pragma once

#include <Audit/Audit.h>
#include <Expectations/Record.h>
#include <FieldProcessor/Unit.h>
#include <StateDatabase/Finder.h>
#include <Vornal/Dependency.h>

namespace Expectations {

// Everything must outlive its use.
struct Evidence {
   StateDatabase::Finder const & finder;
   Chip::Units & units;
   Record const & record;
   Vornal::DependencyPoint const & pluginPoint;
   Audit::Auditor const & auditor;
};

}  // namespace Expectations
