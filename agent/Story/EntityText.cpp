#include <Story/EntityText.h>

#include <Text/Printable.h>

namespace Story {

namespace {

constexpr std::size_t kIndent = 3;

class Writer {
 public:
   void tree( std::string const & heading, EntityTree const & tree ) {
      std::string text = heading + ": " + tree.type;
      text += tree.identity.empty() ? "" : " " + tree.identity;
      text += tree.shownAt.empty() ? "" : " (see " + tree.shownAt + ")";
      line( text );
      deeper( [ & ] {
         for ( EntityAttribute const & one : tree.attributes ) {
            attribute( one );
         }
      } );
   }

   std::string const & text() const { return text_; }

 private:
   void attribute( EntityAttribute const & attribute ) {
      if ( !attribute.isKeyed() ) {
         item( attribute.name, attribute.items.front() );
      } else if ( attribute.items.empty() ) {
         line( attribute.name + ": none" );
      } else {
         line( attribute.name );
         deeper( [ & ] {
            for ( EntityItem const & one : attribute.items ) {
               attribute.isSet() ? line( one.key ) : item( one.key, one );
            }
         } );
      }
   }

   void item( std::string const & heading, EntityItem const & item ) {
      if ( item.entity.empty() ) {
         line( heading + ": " + ( item.text.empty() ? "none" : item.text ) );
      } else {
         tree( heading, item.entity.front() );
      }
   }

   void line( std::string const & text ) {
      text_ += std::string( indent_, ' ' ) + Text::printable( text ) + '\n';
   }

   template< typename Write > void deeper( Write const & write ) {
      indent_ += kIndent;
      write();
      indent_ -= kIndent;
   }

   std::string text_;
   std::size_t indent_ = 0;
};

}  // namespace

std::string treeText( std::string const & path, EntityTree const & tree ) {
   Writer writer;
   writer.tree( path, tree );
   return writer.text();
}

std::string pathLine( EntityShown const & shown ) {
   return Text::printable( shown.path + ": " + shown.tree.type ) + '\n';
}

}  // namespace Story
