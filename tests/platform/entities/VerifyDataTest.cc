#include "NevQos/platform/nev/VerifyData.h"

#include <gtest/gtest.h>

#include "NevQos/platform/nev/NevCommonSmData.h"

namespace {

using Nev::VerifyData;

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

}  // namespace
