#include "Panel.h"

#include <Kiv/Rows.h>

KIV_DEFINE( Support::Lamp )
KIV_DEFINE_NAMED( Support::Panel )

namespace Support {

Lamp::Lamp( Notifier const & port, Panel * panel ) : NestedReactor( port ) {
   panel_ = panel;
}

void Lamp::retired() {
   note( std::string( "retired" ) + ( isZombie() ? ", out of service" : "" ) +
         ( hasNotificationActive() ? ", active" : "" ) );
}

void Lamp::onAttribute( Kiv::Change const & ) {
   if ( panel_->isRetiringOnChange ) {
      panel_->lampDel( kivKey() );
   }
   note( "speed " + std::to_string( notifier()->speed() ) +
         ( isZombie() ? ", out of service" : "" ) );
}

void Lamp::note( std::string const & text ) {
   panel_->story.push_back( "lamp " + identity() + ": " + text );
}

void Panel::lampIs( Quelm::Ptr< Port const > const & port ) {
   Kiv::nestedIs( *this, lampAttr(), lamp_, port, hasNotificationActive() );
}

void Panel::hasNotificationActiveIs( bool active ) {
   Entity::hasNotificationActiveIs( active );
   Kiv::nestedNotificationActiveIs( lamp_, active );
}

void Panel::kivDoZombieReactors( bool zombie ) {
   Entity::kivDoZombieReactors( zombie );
   Kiv::nestedZombieIs( lamp_, zombie );
}

}  // namespace Support
