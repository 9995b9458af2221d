#pragma once

#include <optional>

#include <Expectations/Expected.h>
#include <Quelm/Integers.h>
#include <Story/Difference.h>

namespace Expectations {

// An audit made now finds the rules in step, or not.
class InStep final : public Expected {
 public:
   explicit InStep( bool is ) : isInStep( is ) {}

   std::string description() const override;
   Finding check( Evidence const & evidence ) const override;

   bool isInStep;
};

// An audit made now finds differences of that kind, or if that is empty of any kind that is not
// known: `count` of them, or if that is empty at least one.
class DifferencesLike final : public Expected {
 public:
   std::string description() const override;
   Finding check( Evidence const & evidence ) const override;

   std::optional< Story::DifferenceKind > kind;
   std::optional< U32 > count;
};

std::shared_ptr< Expected const > readAudit( Reading & reading, Value const & value );
std::vector< WordList > auditVocabulary();
std::string auditShape();

}  // namespace Expectations
