// The JSON Schema of scenarios, as an editor applies it (draft 7): the keywords that
// docs/scenario.schema.json uses, and none else. A keyword that is not known throws.
#pragma once

#include <map>
#include <string>

#include <yaml-cpp/yaml.h>
#include <nlohmann/json.hpp>

namespace Schema {

using Json = nlohmann::ordered_json;

// What an editor sees of a YAML node: the types of YAML 1.2's core schema. Of a key that comes
// twice the last one counts.
Json jsonOf( YAML::Node const & node );

class Schema {
 public:
   explicit Schema( Json root ) : root_( std::move( root ) ) {}

   // The one in docs/.
   static Schema const & ofScenarios();

   // The first keyword that the value does not satisfy, with its place ("/switch/units:
   // minProperties"); empty when it satisfies all.
   std::string problem( Json const & value ) const { return check( root_, value, "" ); }

 private:
   struct Keywords;

   std::string check( Json const & schema, Json const & value, std::string const & place ) const;
   bool holds( std::string const & keyword, Json const & schema, Json const & value ) const;
   std::string checkElements( Json const & schema, Json const & list,
                              std::string const & place ) const;
   std::string checkMember( Json const & schema, std::string const & name, Json const & member,
                            std::string const & at ) const;
   std::string checkMembers( Json const & schema, Json const & value,
                             std::string const & place ) const;
   bool isValid( Json const & schema, Json const & value ) const {
      return check( schema, value, "" ).empty();
   }
   bool matches( std::string const & pattern, std::string const & text ) const;

   Json root_;
   mutable std::map< std::pair< std::string, std::string >, bool > matched_;
};

}  // namespace Schema
