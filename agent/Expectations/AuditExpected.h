#pragma once

#include <optional>

#include <Expectations/Expected.h>
#include <Quelm/Integers.h>
#include <Story/Difference.h>

namespace Expectations {

// An audit made now finds the rules in sync, or not in sync.
class InSync final : public ExpectedNow {
 public:
   explicit InSync( bool inSync ) : isInSync( inSync ) {}

   std::string description() const override;
   Finding check( Evidence const & evidence ) const override;

   bool isInSync;
};

// An audit made now finds differences of this kind, or with an empty kind any that are not known:
// `count` of them, or without a count at least one.
class DifferencesLike final : public ExpectedNow {
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
