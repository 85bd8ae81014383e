// Names the case a test is running if an engine assertion aborts the process in it: the abort
// ends the test program before the test can say anything, so the note is written to standard
// error from the abort signal instead. Notes nest; the innermost is written.
#pragma once

#include <string>

namespace Sim {

class AbortNote {
 public:
   explicit AbortNote( std::string text );
   ~AbortNote();
   AbortNote( AbortNote const& ) = delete;
   AbortNote& operator=( AbortNote const& ) = delete;

 private:
   std::string text_;
   AbortNote* outer_;
};

}  // namespace Sim
