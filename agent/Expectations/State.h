#pragma once

#include <memory>
#include <string>
#include <vector>

#include <Expectations/Expected.h>
#include <Scenario/AttributeAt.h>

namespace Expectations {

// An attribute of an entity has a value.
class AttributeEquals final : public ExpectedNow {
 public:
   AttributeEquals( Scenario::AttributeAt place, std::string text )
         : at( std::move( place ) ), value( std::move( text ) ) {}

   std::string description() const override;
   Finding check( Evidence const & evidence ) const override;

   Scenario::AttributeAt at;
   std::string value;
};

// The attribute has, or lacks, its key.
class AttributeHas final : public ExpectedNow {
 public:
   AttributeHas( Scenario::AttributeAt place, bool isThere )
         : at( std::move( place ) ), isPresent( isThere ) {}

   std::string description() const override;
   Finding check( Evidence const & evidence ) const override;

   Scenario::AttributeAt at;
   bool isPresent;
};

std::shared_ptr< Expected const > readState( Reading & reading, Value const & value );
std::vector< WordList > stateVocabulary();

}  // namespace Expectations
