// The data that the Vornal agent shares with all its plug-ins: ports, units, dependency points.
//
// Two maps lead from an interface to its chip port. The live map holds the present port. The cached
// map holds the last port that an interface had, so that rules for that port can be undone after
// the interface has lost or changed it. intfPortIs() and intfPortDel() keep the order between
// them:
//
// - a first-seen interface enters the cached map before the live map announces it;
// - when a known interface changes or loses its port, the live map announces that first and the
//   cached map follows after the announcement; on a loss it stays as it is.
//
// The units that this agent drives are the keys of the module-id table, which is fixed before the
// plug-ins are told to start. Loops over units walk it in its own order, which is unit order.
#pragma once

#include <map>

#include <Kiv/Entity.h>
#include <Pelk/IntfId.h>
#include <Vornal/Dependency.h>
#include <VornalTypes/VornalPort.h>

namespace Vornal {

class VornalCommonSmData : public Kiv::NamedEntity {
   KIV_ENTITY( VornalCommonSmData, Kiv::NamedEntity )
   KIV_COLLECTION( vornalIntfToPort, Pelk::IntfId, VornalTypes::VornalPort )
   KIV_COLLECTION( vornalIntfToPortCache, Pelk::IntfId, VornalTypes::VornalPort )
   KIV_COLLECTION( vornalModId, U16, U16 )  // unit to module id
   KIV_REFERENCE( sliceDependencyPoints, VornalSliceDependencyPoints )
   KIV_OPERATION( void, intfPortIs,
                  ( Pelk::IntfId const & intfId, VornalTypes::VornalPort const & port ) )
   KIV_OPERATION( void, intfPortDel, ( Pelk::IntfId const & intfId ) )
   // The interface whose live port is `port`, or an empty one; of several the first in the order of
   // interfaces. One look-up; the first one after a change visits the live map.
   KIV_QUERY( Pelk::IntfId, intfOfPort, ( VornalTypes::VornalPort const & port ) )

   using NamedEntity::NamedEntity;

 private:
   // The live map from port to interface, as of the change of that number.
   mutable std::map< VornalTypes::VornalPort, Pelk::IntfId > intfOfPort_;
   mutable U32 intfOfPortChange_ = 0;
};

}  // namespace Vornal
