// The question after everything that two switches can differ in: the published state, the plug-in's
// records, the rules of the chips. Each row has a name of its own, so tables can be compared.
#include <Questions/Table.h>

#include <fmt/format.h>

#include <Questions/Names.h>
#include <Snapshot/RuleText.h>
#include <StateDatabase/Tree.h>

namespace Questions {

namespace {

using Story::EntityAttribute;
using Story::EntityItem;
using Story::EntityTree;

// The values of an entity and of those below it, a row each.
class Values {
 public:
   Values( std::string kind, Rows & rows ) : kind_( std::move( kind ) ), rows_( rows ) {}

   void add( std::string const & path, EntityTree const & tree ) {
      if ( !tree.shownAt.empty() && tree.shownAt != path ) {
         rows_.push_back( { kind_, path, tree.shownAt } );
      }
      for ( EntityAttribute const & attribute : tree.attributes ) {
         for ( EntityItem const & item : attribute.items ) {
            add( placeOf( path, attribute, item ), attribute, item );
         }
      }
   }

 private:
   static std::string placeOf( std::string const & path, EntityAttribute const & attribute,
                               EntityItem const & item ) {
      return attribute.isKeyed() ? fmt::format( "{}/{}[{}]", path, attribute.name, item.key )
                                 : fmt::format( "{}/{}", path, attribute.name );
   }

   void add( std::string const & place, EntityAttribute const & attribute,
             EntityItem const & item ) {
      if ( !item.entity.empty() ) {
         add( place, item.entity.front() );
      } else if ( attribute.isSet() ) {
         rows_.push_back( { kind_, place, "there" } );
      } else if ( !item.text.empty() ) {
         rows_.push_back( { kind_, place, item.text } );
      }
   }

   std::string kind_;
   Rows & rows_;
};

void addEntities( StateDatabase::Finder const & finder, bool ofPlugins, Rows & rows ) {
   auto const roots = finder.roots();
   for ( auto const & [ name, entity ] : roots ) {
      if ( name.starts_with( "plugins/" ) == ofPlugins ) {
         Values( ofPlugins ? "record" : "published", rows )
            .add( "/" + name, StateDatabase::treeOf( "/" + name, *entity, roots ) );
      }
   }
}

void addRules( Context const & context, Rows & rows ) {
   Names const names( context.auditor.state() );
   for ( Chip::Rule const & rule : Chip::rulesOf( context.units ) ) {
      rows.push_back(
         { "rule",
           fmt::format( "unit {}, {}, \"{}\": {}", rule.key.unit, Chip::groupText( rule.key.group ),
                        rule.name, Chip::qualifiersText( rule.content, names ) ),
           fmt::format( "{}; {}{}", Chip::actionsText( rule.content ),
                        Chip::priorityText( rule.content.priority ),
                        rule.isWritten ? "" : "; staged only" ) } );
   }
}

}  // namespace

Rows state( Context const & context ) {
   Rows rows;
   addEntities( context.finder, false, rows );
   addRules( context, rows );
   addEntities( context.finder, true, rows );
   return rows;
}

}  // namespace Questions
