#include "NevQos/types/Rates.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NevQos/platform/zub/Trace.h"

namespace {

// Captures the level-3 (clamping) records of the NevQos trace against one chip's limits.
class RatesTest : public ::testing::Test {
 protected:
   void SetUp() override {
      auto hw = Zub::make< Qos::AclHwStatus >( Zub::Name( "chip" ) );
      hw->policeByteModeMinRateKbpsIs( 1 );
      hw->policeByteModeMaxRateKbpsIs( 10000000 );
      hw->policeByteModeMinBurstBytesIs( 64 );
      hw->policeByteModeMaxBurstBytesIs( 16000000 );
      hw->policePacketModeMinRatePpsIs( 10 );
      hw->policePacketModeMaxRatePpsIs( 1000000 );
      hw->policePacketModeMinBurstPacketsIs( 2 );
      hw->policePacketModeMaxBurstPacketsIs( 10000 );
      hw_ = hw;
      Zub::traceDisableAll();
      ASSERT_TRUE( Zub::traceEnable( "NevQos/3" ) );
      Zub::traceSinkIs( [ this ]( Zub::TraceRecord const& r ) {
         if( r.handle == "NevQos" && r.level == 3 ) traces_.push_back( r.message.stdString() );
      } );
   }
   void TearDown() override {
      Zub::traceSinkIs( {} );
      Zub::traceDisableAll();
   }
   // The one clamping trace since the last call, or "" when nothing was clamped.
   std::string takeTrace() {
      EXPECT_LE( traces_.size(), 1u );
      std::string t = traces_.empty() ? "" : traces_.back();
      traces_.clear();
      return t;
   }

   Zub::Ptr< Qos::AclHwStatus const > hw_;
   std::vector< std::string > traces_;
};

struct RateCase {
   std::uint64_t rate;
   Qos::RateUnit unit;
   std::uint64_t expectedRate;
   Qos::RateUnit expectedUnit;
   char const* trace;
};

TEST_F( RatesTest, CirIsClampedToTheChipLimits ) {
   RateCase const cases[] = {
      // 500 bps truncates to 0 kbps, below the minimum of 1.
      { 500, Qos::rateUnitBps_, 1, Qos::rateUnitKbps_,
        "cirKbps (0) < policeByteModeMinRateKbps (1). Setting cir to 1 and cirUnit to Kbps." },
      { 20000, Qos::rateUnitMbps_, 10000000, Qos::rateUnitKbps_,
        "cirKbps (20000000) > policeByteModeMaxRateKbps (10000000). Setting cir to 10000000 "
        "and cirUnit to Kbps." },
      // In range or exactly at a limit, neither value nor unit changes.
      { 2, Qos::rateUnitMbps_, 2, Qos::rateUnitMbps_, "" },
      { 10000, Qos::rateUnitMbps_, 10000, Qos::rateUnitMbps_, "" },
      { 9, Qos::rateUnitPps_, 10, Qos::rateUnitPps_,
        "cir (9) < policePacketModeMinRatePps (10). Setting cir to 10" },
      { 1000001, Qos::rateUnitPps_, 1000000, Qos::rateUnitPps_,
        "cir (1000001) > policePacketModeMaxRatePps (1000000). Setting cir to 1000000" },
      { 1000000, Qos::rateUnitPps_, 1000000, Qos::rateUnitPps_, "" },
      { 10, Qos::rateUnitPps_, 10, Qos::rateUnitPps_, "" },
   };
   for( auto const& c : cases ) {
      SCOPED_TRACE( testing::Message() << c.rate << " " << c.unit );
      std::uint64_t cir = c.rate;
      Qos::RateUnit unit = c.unit;
      Nev::validateAndUpdateCir( hw_, cir, unit );
      EXPECT_EQ( cir, c.expectedRate );
      EXPECT_EQ( unit, c.expectedUnit );
      EXPECT_EQ( takeTrace(), c.trace );
   }
}

// bc and be share limits and texts: `pattern` is the trace without the parameter's name in
// front, and with % where the name recurs.
std::string burstTrace( char const* pattern, std::string const& param ) {
   if( !*pattern ) return "";
   std::string t = param;
   for( char const* p = pattern; *p; ++p )
      t += *p == '%' ? param : std::string( 1, *p );
   return t;
}

TEST_F( RatesTest, BcAndBeAreClampedToTheChipLimits ) {
   struct {
      std::uint32_t burst;
      Qos::BurstUnit unit;
      std::uint32_t expectedBurst;
      Qos::BurstUnit expectedUnit;
      char const* trace;
   } const cases[] = {
      // 3 MB is compared as 3000000 bytes, not as 3.
      { 3, Qos::burstUnitMbytes_, 3, Qos::burstUnitMbytes_, "" },
      { 64, Qos::burstUnitBytes_, 64, Qos::burstUnitBytes_, "" },
      { 63, Qos::burstUnitBytes_, 64, Qos::burstUnitBytes_,
        "Bytes (63) < policeByteModeMinBurstBytes (64). Setting % to 64 and %Unit to bytes." },
      { 17, Qos::burstUnitMbytes_, 16000000, Qos::burstUnitBytes_,
        "Bytes (17000000) > policeByteModeMaxBurstBytes (16000000). Setting % to 16000000 and "
        "%Unit to bytes." },
      // 4295 MB wraps to 32704 bytes in 32 bits, which would pass as in range.
      { 4295, Qos::burstUnitMbytes_, 16000000, Qos::burstUnitBytes_,
        "Bytes (4295000000) > policeByteModeMaxBurstBytes (16000000). Setting % to 16000000 "
        "and %Unit to bytes." },
      { 1, Qos::burstUnitPackets_, 2, Qos::burstUnitPackets_,
        " (1) < policePacketModeMinBurstPackets (2). Setting % to 2" },
      { 10001, Qos::burstUnitPackets_, 10000, Qos::burstUnitPackets_,
        " (10001) > policePacketModeMaxBurstPackets (10000). Setting % to 10000" },
   };
   for( auto const& c : cases ) {
      SCOPED_TRACE( testing::Message() << c.burst << " " << c.unit );
      std::uint32_t bc = c.burst, be = c.burst;
      Qos::BurstUnit bcUnit = c.unit, beUnit = c.unit;
      Nev::validateAndUpdateBc( hw_, bc, bcUnit );
      EXPECT_EQ( bc, c.expectedBurst );
      EXPECT_EQ( bcUnit, c.expectedUnit );
      EXPECT_EQ( takeTrace(), burstTrace( c.trace, "bc" ) );
      Nev::validateAndUpdateBe( hw_, 1, be, beUnit );
      EXPECT_EQ( be, c.expectedBurst );
      EXPECT_EQ( beUnit, c.expectedUnit );
      EXPECT_EQ( takeTrace(), burstTrace( c.trace, "be" ) );
   }
}

TEST_F( RatesTest, SingleRatePolicerLeavesPirAndBeAlone ) {
   std::uint64_t pir = 0;
   Qos::RateUnit pirUnit = Qos::rateUnitMbps_;
   Nev::validateAndUpdatePir( hw_, 5000, Qos::rateUnitKbps_, pir, pirUnit );
   EXPECT_EQ( pir, 0u );
   EXPECT_EQ( pirUnit, Qos::rateUnitMbps_ );
   std::uint32_t be = 1;  // far below the minimum burst
   Qos::BurstUnit beUnit = Qos::burstUnitBytes_;
   Nev::validateAndUpdateBe( hw_, pir, be, beUnit );
   EXPECT_EQ( be, 1u );
   EXPECT_TRUE( traces_.empty() );
}

TEST_F( RatesTest, PirExcessOverCirIsClampedToTheChipLimits ) {
   struct {
      std::uint64_t cir;
      Qos::RateUnit cirUnit;
      RateCase pir;
   } const cases[] = {
      // Equal rates leave no excess: below the minimum, so cir + minimum, in kbps.
      { 5000,
        Qos::rateUnitKbps_,
        { 5, Qos::rateUnitMbps_, 5001, Qos::rateUnitKbps_,
          "pirKbps (5000) < policeByteModeMinRateKbps (1) + cirKbps (5000). Setting pir to 5001 "
          "and pirUnit to Kbps." } },
      // Below cir the excess wraps around and becomes the largest legal peak rate.
      { 5000,
        Qos::rateUnitKbps_,
        { 4, Qos::rateUnitMbps_, 10005000, Qos::rateUnitKbps_,
          "pirKbps (4000) > policeByteModeMaxRateKbps (10000000) + cirKbps (5000). Setting pir "
          "to 10005000 and pirUnit to Kbps." } },
      { 1000000,
        Qos::rateUnitBps_,
        { 20000, Qos::rateUnitMbps_, 10001000, Qos::rateUnitKbps_,
          "pirKbps (20000000) > policeByteModeMaxRateKbps (10000000) + cirKbps (1000). Setting "
          "pir to 10001000 and pirUnit to Kbps." } },
      { 1, Qos::rateUnitMbps_, { 2, Qos::rateUnitMbps_, 2, Qos::rateUnitMbps_, "" } },
      // Packet mode works on the raw numbers; the text names the maximum for the minimum too.
      { 100,
        Qos::rateUnitPps_,
        { 105, Qos::rateUnitPps_, 110, Qos::rateUnitPps_,
          "pirPps (105) < policePacketModeMaxRatePps (10) + cirPps (100). Setting pir to "
          "110" } },
      { 100,
        Qos::rateUnitPps_,
        { 50, Qos::rateUnitPps_, 1000100, Qos::rateUnitPps_,
          "pirPps (50) > policePacketModeMaxRatePps (1000000) + cirPps (100). Setting pir to "
          "1000100" } },
      { 100, Qos::rateUnitPps_, { 1000100, Qos::rateUnitPps_, 1000100, Qos::rateUnitPps_, "" } },
   };
   for( auto const& c : cases ) {
      SCOPED_TRACE( testing::Message()
                    << c.cir << " " << c.cirUnit << ", " << c.pir.rate << " " << c.pir.unit );
      std::uint64_t pir = c.pir.rate;
      Qos::RateUnit pirUnit = c.pir.unit;
      Nev::validateAndUpdatePir( hw_, c.cir, c.cirUnit, pir, pirUnit );
      EXPECT_EQ( pir, c.pir.expectedRate );
      EXPECT_EQ( pirUnit, c.pir.expectedUnit );
      EXPECT_EQ( takeTrace(), c.pir.trace );
   }
}

TEST_F( RatesTest, ValidatedValuesPassAgainUnchanged ) {
   // Verification reruns the validation on the stored values and must reproduce them.
   std::uint64_t cir = 500, pir = 400;
   Qos::RateUnit cirUnit = Qos::rateUnitBps_, pirUnit = Qos::rateUnitBps_;
   std::uint32_t bc = 17, be = 1;
   Qos::BurstUnit bcUnit = Qos::burstUnitMbytes_, beUnit = Qos::burstUnitBytes_;
   for( std::size_t expectedTraces : { 4u, 0u } ) {
      Nev::validateAndUpdateCir( hw_, cir, cirUnit );
      Nev::validateAndUpdateBc( hw_, bc, bcUnit );
      Nev::validateAndUpdatePir( hw_, cir, cirUnit, pir, pirUnit );
      Nev::validateAndUpdateBe( hw_, pir, be, beUnit );
      EXPECT_EQ( traces_.size(), expectedTraces );
      traces_.clear();
   }
   EXPECT_EQ( cir, 1u );
   EXPECT_EQ( cirUnit, Qos::rateUnitKbps_ );
   EXPECT_EQ( pir, 10000001u );  // the wrapped excess of 0 - 1 kbps, capped at the maximum
   EXPECT_EQ( pirUnit, Qos::rateUnitKbps_ );
   EXPECT_EQ( bc, 16000000u );
   EXPECT_EQ( be, 64u );
}

}  // namespace
