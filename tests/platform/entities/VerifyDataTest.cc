#include "nev/VerifyData.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "nev/NevCommonSmData.h"

namespace {

using Nev::VerifyData;
using Nev::VerifyOutput;

// A machine's reactor on the verify data: counts the runs it is told of.
class RunCounter : public VerifyData::Notifiee {
 public:
   void onVerify() override { ++runs; }
   int runs = 0;
};

class VerifyDataTest : public ::testing::Test {
 protected:
   Zub::Ptr< Nev::NevCommonSmData > ncsd = Zub::make< Nev::NevCommonSmData >( Zub::Name( "ncsd" ) );
   Zub::Ptr< VerifyData > verifyData = Zub::make< VerifyData >( Zub::Name( "verify" ) );
};

TEST_F( VerifyDataTest, ReportKeepsFindingsInOrderAcrossClears ) {
   verifyData->updateCliVerifyOutput( "handleVerify", "ACL a set to destroying but still exists" );
   verifyData->updateCliVerifyOutput( "verifyIpRule",
                                      "ACL b sequence 10 rule 0 subrule 1 doesn't exist" );
   EXPECT_EQ(
         verifyData->cliVerifyOutputTexts(),
         ( std::vector< Zub::String >{ "ACL a set to destroying but still exists",
                                       "ACL b sequence 10 rule 0 subrule 1 doesn't exist" } ) );
   auto first = verifyData->cliVerifyOutput().iter();
   EXPECT_EQ( first->function(), "handleVerify" );
   EXPECT_EQ( first->kind(), VerifyOutput::kindHwMismatch );

   // The same finding twice is two lines; after a clear, new lines still follow in order.
   verifyData->updateCliVerifyOutput( "verifyIpRule", "same" );
   verifyData->updateCliVerifyOutput( "verifyIpRule", "same" );
   EXPECT_EQ( verifyData->cliVerifyOutputSize(), 4u );
   verifyData->cliVerifyOutputDelAll();
   verifyData->updateCliVerifyOutput( "f", "third" );
   verifyData->updateCliVerifyOutput( "f", "fourth" );
   EXPECT_EQ( verifyData->cliVerifyOutputTexts(),
              ( std::vector< Zub::String >{ "third", "fourth" } ) );
}

TEST_F( VerifyDataTest, RequestAndRun ) {
   ncsd->verifyDataIs( verifyData );
   RunCounter machine;
   machine.notifierIsWithoutCatchUp( ncsd->verifyData() );

   // Requests only mark the wish; the machines hear of a run when the agent starts it.
   verifyData->doRequestVerify();
   verifyData->doRequestVerify();
   EXPECT_TRUE( verifyData->verifyRequested() );
   EXPECT_EQ( machine.runs, 0 );

   verifyData->doVerify();
   EXPECT_FALSE( verifyData->verifyRequested() );
   EXPECT_EQ( machine.runs, 1 );
   verifyData->doVerify();  // a run without a request still runs
   EXPECT_EQ( machine.runs, 2 );
}

TEST_F( VerifyDataTest, FatalFindingCarriesItsSource ) {
   VerifyOutput finding( "ACL c sequence 5 rule 1 subrule 0 should not exist",
                         "QosClassMatchAclSm.cc", 412, "verifyIpRule" );
   verifyData->verifyOutputIs( finding );
   EXPECT_EQ( verifyData->verifyOutput(), finding );
   EXPECT_EQ( verifyData->verifyOutput().line(), 412u );
   EXPECT_TRUE( !VerifyOutput() );
   EXPECT_FALSE( !finding );
   std::ostringstream os;
   os << finding;
   EXPECT_EQ( os.str(), "verifyIpRule: ACL c sequence 5 rule 1 subrule 0 should not exist" );
}

}  // namespace
