// Whether what a scenario expects is so.
#pragma once

#include <string>

#include <Audit/Audit.h>
#include <FieldProcessor/Unit.h>
#include <Host/Record.h>
#include <Scenario/Scenario.h>
#include <StateDatabase/Finder.h>
#include <Vornal/Dependency.h>
#include <VornalTcam/EntryManager.h>

namespace Host {

// What was found: whether it is as expected, and what there is, in words ("it is not ready").
struct Finding {
   bool isAsExpected = false;
   std::string found;
};

// What expectations are compared with. Everything must outlive its use.
struct Evidence {
   StateDatabase::Finder const & finder;
   Chip::Units & units;
   Record const & record;
   Vornal::DependencyPoint const & pluginPoint;
   Audit::Auditor const & auditor;
};

// The group's number on the chip.
Vornal::TcamGroupAssignment assignmentOf( Scenario::TcamGroup group );

// An entity that is not there is a finding; an attribute that its type does not have throws
// Quelm::AccessError, and a key that is not of its type Quelm::TextError.
Finding check( Scenario::Expected const & expected, Evidence const & evidence );

}  // namespace Host
