// The entity through which the platform's verify agent and the state machines run consistency
// checks: the agent starts a run, the machines compare hardware with configuration, and each
// mismatch found becomes a line of the report that the verify command shows.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <vector>

#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

// One finding: its text, where in the source it was raised, and its kind.
class VerifyOutput {
 public:
   // A mismatch between the hardware and what the engine believes it programmed.
   static constexpr std::uint32_t kindHwMismatch = 3;

   VerifyOutput() = default;
   VerifyOutput( Zub::String const& text, Zub::String const& file, std::uint32_t line,
                 Zub::String const& function, std::uint32_t kind = kindHwMismatch )
       : text_( text ), file_( file ), function_( function ), line_( line ), kind_( kind ) {}

   Zub::String const& text() const { return text_; }
   Zub::String const& file() const { return file_; }
   std::uint32_t line() const { return line_; }
   Zub::String const& function() const { return function_; }
   std::uint32_t kind() const { return kind_; }

   bool operator==( VerifyOutput const& ) const = default;
   bool operator!() const { return *this == VerifyOutput(); }

 private:
   Zub::String text_;
   Zub::String file_;
   Zub::String function_;
   std::uint32_t line_ = 0;
   std::uint32_t kind_ = 0;
};

std::ostream& operator<<( std::ostream& os, VerifyOutput const& o );

// clang-format off
#define NEV_VERIFY_DATA_ATTRS( X )                                                    \
   /* Moved by doVerify() to start a run; machines verify when it changes. */         \
   X( value, Verify, verify, std::uint32_t, 0u )                                      \
   /* The verify agent wants a run asked for after every change the machines make. */ \
   X( value, VerifyRequired, verifyRequired, bool, false )                            \
   /* A run has been asked for and hasn't started yet. */                             \
   X( value, VerifyRequested, verifyRequested, bool, false )                          \
   /* The finding that stopped a simulated switch. */                                 \
   X( value, VerifyOutput, verifyOutput, Nev::VerifyOutput, Nev::VerifyOutput() )     \
   /* The report for the verify command: findings in the order they were raised. */   \
   X( keyed, CliVerifyOutput, cliVerifyOutput, std::uint32_t, Nev::VerifyOutput )
// clang-format on

class VerifyData : public Zub::Entity {
 public:
   explicit VerifyData( Zub::Name const& name ) : Zub::Entity( name.str() ) {}
   ZUB_ENTITY_BODY( VerifyData, Zub::Entity, NEV_VERIFY_DATA_ATTRS )

   // Asks the verify agent for a run; a run already asked for is not asked for twice.
   void doRequestVerify() { verifyRequestedIs( true ); }
   // Starts a run: takes the request and tells the machines. The report is kept; the caller
   // empties it with cliVerifyOutputDelAll() when it wants only this run's findings.
   void doVerify();
   // Adds a finding as the next line of the report.
   void updateCliVerifyOutput( Zub::String const& function, Zub::String const& text );
   // The texts of the report, in order.
   std::vector< Zub::String > cliVerifyOutputTexts() const;

 private:
   std::uint32_t nextLine_ = 0;
};

// Reports one mismatch between the hardware and what was expected of it: the text becomes the next
// line of the report. Where the environment variable SIMULATION_VMID is set (a simulated switch)
// any mismatch is fatal: the finding is kept in verifyOutput and the process stops. Without
// `verifyData` only the stop applies.
void reportVerifyFailure( VerifyData* verifyData, Zub::String const& text, char const* file,
                          std::uint32_t line, char const* function );

}  // namespace Nev

#define NEV_VERIFY_FAILURE( verifyData, text ) \
   ::Nev::reportVerifyFailure( verifyData, text, __FILE__, __LINE__, __func__ )
