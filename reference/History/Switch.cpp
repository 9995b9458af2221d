#include <History/Switch.h>

namespace Reference {

void Switch::happens( Event const & event ) {
   if ( !stop_ ) {
      try {
         std::visit( [ this ]( auto const & one ) { take( one ); }, event );
      } catch ( Stop const & stop ) {
         stop_ = stop;
      }
   }
}

void Switch::turnEnds() {
   while ( !stop_ && isReady_ && groups_.isTimeToLookAgain() ) {
      try {
         vnis_.lookAgain();
      } catch ( Stop const & stop ) {
         stop_ = stop;
      }
   }
}

void Switch::take( Ready const & ) {
   if ( isReady_ ) {
      return;
   }
   isReady_ = true;
   vnis_.begins();
   for ( Vtep const & vtep : facts_.sharing() ) {
      senders_.sharingChanges( vtep );
   }
   vnis_.readAll();
   // The plug-in listens from here on: what was refused until now brings no second look.
   groups_.isTimeToLookAgain();
}

void Switch::take( Pass const & ) {
   if ( !isReady_ ) {
      pass_ = "absent";
      return;
   }
   pass_ = senders_.isShort() ? "skipped" : "held";
   senders_.verify();
}

void Switch::take( OthersHold const & event ) {
   groups_.othersHold( event.group, event.unit, event.entries );
}

// --- Interfaces and port channels

// A new interface has its port as its last one from the start. For others, the change is announced
// while their last port is still the old one.
void Switch::take( PortIs const & event ) {
   facts_.lastPort.try_emplace( event.intf, event.port );
   auto const [ found, isNew ] = facts_.port.try_emplace( event.intf, event.port );
   if ( !isNew && found->second == event.port ) {
      return;
   }
   found->second = event.port;
   if ( isReady_ ) {
      senders_.portChanges( event.intf );
   }
   facts_.lastPort[ event.intf ] = event.port;
}

void Switch::take( PortGoes const & event ) {
   if ( facts_.port.erase( event.intf ) > 0 && isReady_ ) {
      senders_.portChanges( event.intf );
   }
}

void Switch::take( MemberJoins const & event ) {
   lagIs( event.member, event.portChannel );
}

void Switch::take( MemberLeaves const & event ) {
   lagIs( event.member, Interface() );
}

void Switch::lagIs( Interface const & member, Interface const & portChannel ) {
   Interface const before =
      facts_.portChannelOf.contains( member ) ? facts_.portChannelOf.at( member ) : Interface();
   if ( before == portChannel ) {
      return;
   }
   facts_.portChannelOf.erase( member );
   if ( isReady_ && before != Interface() ) {
      senders_.memberChanges( before, member, false );
   }
   if ( portChannel != Interface() ) {
      facts_.portChannelOf[ member ] = portChannel;
      if ( isReady_ ) {
         senders_.memberChanges( portChannel, member, true );
      }
   }
}

// --- Ethernet segments

void Switch::take( SegmentIs const & event ) {
   if ( facts_.segment.try_emplace( event.intf ).second && isReady_ ) {
      vnis_.segmentsChange();
   }
}

void Switch::take( SegmentGoes const & event ) {
   auto const gone = facts_.segment.extract( event.intf );
   if ( gone && isReady_ ) {
      for ( Vtep const & vtep : gone.mapped() ) {
         left( vtep, event.intf );
      }
      vnis_.segmentsChange();
   }
}

// Those who have gone leave before the new ones join.
void Switch::take( SegmentReplaced const & event ) {
   std::set< Vtep > const before = facts_.segment[ event.intf ];
   std::set< Vtep > & present = facts_.segment[ event.intf ];
   present.clear();
   for ( Vtep const & vtep : before ) {
      if ( event.vteps.contains( vtep ) ) {
         present.insert( vtep );
      }
   }
   for ( Vtep const & vtep : before ) {
      if ( isReady_ && !present.contains( vtep ) ) {
         left( vtep, event.intf );
      }
   }
   for ( Vtep const & vtep : event.vteps ) {
      if ( present.insert( vtep ).second && isReady_ ) {
         joined( vtep, event.intf );
      }
   }
   if ( isReady_ ) {
      vnis_.segmentsChange();
   }
}

void Switch::take( VtepJoins const & event ) {
   take( SegmentIs{ event.segment } );
   if ( facts_.segment[ event.segment ].insert( event.vtep ).second && isReady_ ) {
      joined( event.vtep, event.segment );
   }
}

void Switch::take( VtepLeaves const & event ) {
   if ( facts_.segment[ event.segment ].erase( event.vtep ) > 0 && isReady_ ) {
      left( event.vtep, event.segment );
   }
}

// A VTEP's first interface begins the sharing with everything in place; later ones are followed up.
void Switch::joined( Vtep const & vtep, Interface const & segment ) {
   if ( facts_.sharedWith( vtep ).size() == 1 ) {
      senders_.sharingChanges( vtep );
   } else {
      senders_.sharedInterfaceChanges( vtep, segment, true );
   }
}

// Each interface that goes is followed up, the last one too; then the sharing ends.
void Switch::left( Vtep const & vtep, Interface const & segment ) {
   senders_.sharedInterfaceChanges( vtep, segment, false );
   if ( facts_.sharedWith( vtep ).empty() ) {
      senders_.sharingChanges( vtep );
   }
}

// --- VTEPs, class ids

void Switch::take( VirtualPortIs const & event ) {
   auto const [ found, isNew ] = facts_.virtualPort.try_emplace( event.vtep, event.number );
   if ( !isNew && found->second == event.number ) {
      return;
   }
   found->second = event.number;
   if ( isReady_ ) {
      senders_.virtualPortIs( event.vtep );
   }
}

void Switch::take( VirtualPortGoes const & event ) {
   if ( facts_.virtualPort.erase( event.vtep ) > 0 && isReady_ ) {
      senders_.virtualPortGoes( event.vtep );
   }
}

// The rules follow every key of a VTEP as if it were the only one.
void Switch::take( OtherKeyIs const & event ) {
   auto const [ found, isNew ] = facts_.otherKey.try_emplace( event.key, event.virtualPort );
   if ( !isNew && found->second == event.virtualPort ) {
      return;
   }
   found->second = event.virtualPort;
   if ( isReady_ ) {
      senders_.virtualPortIs( event.key.vtep );
   }
}

void Switch::take( OtherKeyGoes const & event ) {
   if ( facts_.otherKey.erase( event.key ) > 0 && isReady_ ) {
      senders_.virtualPortGoes( event.key.vtep );
   }
}

void Switch::take( GrantIs const & event ) {
   auto const [ found, isNew ] = facts_.grant.try_emplace( event.vtep, event.id );
   if ( !isNew && found->second == event.id ) {
      return;
   }
   found->second = event.id;
   if ( isReady_ && device_.variant == Variant::classId ) {
      senders_.grantComes( event.vtep );
   }
}

// Whoever has the class id keeps it.
void Switch::take( GrantGoes const & event ) {
   facts_.grant.erase( event.vtep );
}

// --- Tunnel interfaces

void Switch::take( TunnelIs const & event ) {
   facts_.tunnel.try_emplace( event.intf );
}

void Switch::take( TunnelGoes const & event ) {
   if ( facts_.tunnel.erase( event.intf ) > 0 && isReady_ ) {
      vnis_.tunnelGoes( event.intf );
   }
}

void Switch::take( TunnelReplaced const & event ) {
   facts_.tunnel[ event.intf ] = event.vnis;
}

void Switch::take( VniIs const & event ) {
   auto & mappings = facts_.tunnel[ event.tunnel ];
   auto const [ found, isNew ] = mappings.try_emplace( event.vrf, event.vni );
   if ( !isNew && found->second == event.vni ) {
      return;
   }
   Vni const before = isNew ? 0 : std::exchange( found->second, event.vni );
   if ( isReady_ ) {
      vnis_.mappingChanges( event.vrf, before, event.vni );
   }
}

void Switch::take( VniGoes const & event ) {
   auto const gone = facts_.tunnel[ event.tunnel ].extract( event.vrf );
   if ( gone && isReady_ ) {
      vnis_.mappingChanges( event.vrf, gone.mapped(), 0 );
   }
}

}  // namespace Reference
