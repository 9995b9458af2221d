// Dependency points: how the parts of an agent wait for each other while it starts.
//
// A point is a name that becomes ready once. A set holds points by name; the points of a group are
// named "group::point", as in "subagents::l2Ready". A plug-in waits for the points it needs and
// marks its own when it has started.
#pragma once

#include <string>

#include <Kiv/Entity.h>
#include <Trace/Trace.h>

namespace Vornal {

class DependencyPoint : public Kiv::NamedEntity {
   KIV_ENTITY( DependencyPoint, Kiv::NamedEntity )
   KIV_VALUE( isReady, bool )

   using NamedEntity::NamedEntity;

   void markReady() { isReadyIs( true ); }
};

// Points that can be asked for by name.
class DependencySet : public Kiv::Entity {
   KIV_ENTITY( DependencySet, Kiv::Entity )

   // Whether the named point is there and ready.
   virtual bool isReady( std::string const & name ) const = 0;
};

// The points of the agent's sub-agents: the names of those that are ready ("l2Ready").
class SubAgentDependencyPoints : public Kiv::NamedEntity {
   KIV_ENTITY( SubAgentDependencyPoints, Kiv::NamedEntity )
   KIV_SET( ready, std::string )

   using NamedEntity::NamedEntity;
};

// All points of one slice: those of its sub-agents (named "subagents::..."), and the one that the
// EVPN plug-in marks ("evpn").
class VornalSliceDependencyPoints : public DependencySet {
   KIV_ENTITY( VornalSliceDependencyPoints, DependencySet )
   KIV_REFERENCE( subAgentDependencyPoints, SubAgentDependencyPoints )
   KIV_HELD( evpnDependencyPoint, DependencyPoint )

   VornalSliceDependencyPoints();

   bool isReady( std::string const & name ) const override;
};

// Whether every named point of `set` is ready. `names` ends with a null pointer. No set: false. The
// first point that is not ready is traced at level 7, after `caller`.
bool areAllDependenciesReady_( Trace::Handle const & trace, char const * caller,
                               Quelm::Ptr< DependencySet const > const & set,
                               char const * const * names );

}  // namespace Vornal
