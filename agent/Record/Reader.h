// Reads the record of a run, item by item, up to its end or to a damage.
//
// Damage of a file shows in the checksum of the block around it. All items of the blocks before are
// given, and none of a damaged block.
#pragma once

#include <Record/File.h>
#include <Record/Items.h>

namespace Record {

class Reader {
 public:
   // Story::InputError when the file cannot be read, is no record, or one of another version.
   explicit Reader( std::filesystem::path file );
   Reader( Reader const & ) = delete;
   Reader & operator=( Reader const & ) = delete;
   ~Reader() = default;

   // The next item; nothing at the end, and at a damage.
   std::optional< Item > next();
   // The next event; leaves out inputs.
   std::optional< Story::Event > nextEvent();

   // The run in the record came to its end, and the record has been read to it.
   bool isComplete() const { return isComplete_; }
   // Where the record ends when it is not complete, and why: "after step 3; byte 1234 of the file:
   // ...".
   std::string cutText() const;
   // The second part of it alone; empty without a damage.
   std::string damageText() const;
   std::filesystem::path const & file() const { return file_.file(); }

 private:
   bool blockNew();
   void note( Item const & item );

   FileReader file_;
   std::string block_;
   std::string_view left_;                    // of the block
   std::string damage_;                       // of an item
   std::optional< Story::StepBegins > step_;  // the last that has ended
   std::optional< Story::StepBegins > begun_;
   bool isComplete_ = false;
};

}  // namespace Record
