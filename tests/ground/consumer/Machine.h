// Frames from a VTEP in quarantine leave by no port of the switch.
#pragma once

#include <Kiv/Entity.h>
#include <Log/Log.h>
#include <Pelk/IpGenAddr.h>
#include <Trace/Trace.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalCentral/VpIndexStatus.h>
#include <VornalTcam/EntryManager.h>

namespace Quarantine {

extern Trace::Handle const trace;

// An operator puts VTEPs into quarantine here.
class Config : public Kiv::NamedEntity {
   KIV_ENTITY( Config, Kiv::NamedEntity )
   KIV_SET( vtep, Pelk::IpGenAddr )

   using NamedEntity::NamedEntity;
};

class Machine : public Kiv::Entity {
   KIV_ENTITY( Machine, Kiv::Entity )
   // Inputs
   KIV_HELD( config, Config const )
   KIV_HELD( vports, VornalCentral::VpIndexStatus const )
   KIV_HELD( common, Vornal::VornalCommonSmData const )
   KIV_HELD( entries, Vornal::VornalUnboundedTcamEntryManager )
   // Records: the entry of each VTEP that has its rule
   KIV_COLLECTION( entryId, Pelk::IpGenAddr, U32 )
   KIV_OPERATION( void, handleVerify, () )

   Machine( Quelm::Ptr< Config const > const & config,
            Quelm::Ptr< VornalCentral::VpIndexStatus const > const & vports,
            Quelm::Ptr< Vornal::VornalCommonSmData const > const & common,
            Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > const & entries );

 private:
   void handleVtep( Pelk::IpGenAddr const & vtep );
   void handleVport( VornalCentral::RemoteVtepKey const & key ) { handleVtep( key.vtepIp() ); }
   void handlePort( Pelk::IntfId const & ) { handleAll(); }
   void handleRoom( U16 const & unit );
   void handleAll();

   U32 gportOf( Pelk::IpGenAddr const & vtep ) const;
   _shr_pbmp everyPort() const;
   void ruleIs( Pelk::IpGenAddr const & vtep );
   void ruleDel( Pelk::IpGenAddr const & vtep );

   Kiv::Watch< Config > configWatch_{ config(), Kiv::onKey( Config::vtepAttr(), this,
                                                            &KivSelf::handleVtep ) };
   Kiv::Watch< VornalCentral::VpIndexStatus > vportWatch_{
      vports(),
      Kiv::onKey( VornalCentral::VpIndexStatus::remoteVportAttr(), this, &KivSelf::handleVport )
   };
   Kiv::Watch< Vornal::VornalCommonSmData > portWatch_{
      common(),
      Kiv::onKey( Vornal::VornalCommonSmData::vornalIntfToPortAttr(), this, &KivSelf::handlePort )
   };
   Kiv::Watch< Vornal::VornalUnboundedTcamEntryManager > roomWatch_{
      entries(), Kiv::onKey( Vornal::VornalUnboundedTcamEntryManager::exhaustedAttr(), this,
                             &KivSelf::handleRoom )
   };
};

}  // namespace Quarantine
