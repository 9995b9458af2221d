#include "Panel.h"

#include <Kiv/Rows.h>

KIV_DEFINE( Support::Lamp )
KIV_DEFINE_NAMED( Support::Panel )

namespace Support {

Lamp::Lamp( Notifier const & port, Panel * panel )
      : NestedReactor( port, Kiv::onAttribute( Port::speedAttr(), this, &Lamp::handleSpeed ) ),
        panel_( panel ) {}

void Lamp::retired() {
   note( *panel(), std::string( "retired" ) + ( isZombie() ? ", out of service" : "" ) +
                      ( hasNotificationActive() ? ", active" : "" ) );
   panel()->onRetired( *this );
}

void Lamp::handleSpeed() {
   QUELM_ASSERT( panel() );
   Panel & owner = *panel();
   if ( owner.isRetiringOnChange ) {
      owner.lampDel( kivKey() );
   }
   note( owner, "speed " + std::to_string( notifier()->speed() ) +
                   ( isZombie() ? ", out of service" : "" ) );
}

void Lamp::note( Panel & panel, std::string const & text ) const {
   panel.story.push_back( "lamp " + identity() + ": " + text );
}

Panel::~Panel() {
   Kiv::nestedOwnerDel( lamp_ );
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
