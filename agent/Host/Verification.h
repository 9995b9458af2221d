// Verification of the rules, from outside and from inside of the plug-in.
#pragma once

#include <Audit/Audit.h>
#include <StateDatabase/Finder.h>
#include <Story/Observer.h>

namespace Host {

// Audits the rules and tells what was found.
void tellAudit( Audit::Auditor const & auditor, Story::Observer & observer );

// Runs the pass of the plug-in's state machine, handleVerify, which stops the process at the first
// thing that it does not agree with; tells that it begins, and that it held or has compared
// nothing.
void runPluginPass( StateDatabase::Finder const & finder, Story::Observer & observer );

}  // namespace Host
