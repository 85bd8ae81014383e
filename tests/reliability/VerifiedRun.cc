#include "reliability/VerifiedRun.h"

#include <algorithm>

namespace NevQosTest {

namespace {

void verifyNow( Sim::SimSwitch& sw, std::vector< std::string >& findings,
                std::function< void() > const& check ) {
   for( std::string& f : sw.verify() )
      findings.push_back( std::move( f ) );
   if( check ) check();
}

}  // namespace

std::vector< std::string > runVerified( Sim::SimSwitch& sw, Zub::Seconds until,
                                        std::function< void() > const& check, Zub::Seconds slice ) {
   std::vector< std::string > findings;
   verifyNow( sw, findings, check );
   while( sw.now() < until ) {
      sw.runUntil( std::min( until, sw.now() + slice ) );
      verifyNow( sw, findings, check );
   }
   return findings;
}

std::vector< std::string > stepVerified( Sim::SimSwitch& sw, Sim::Step const& step,
                                         std::function< void() > const& check,
                                         Zub::Seconds slice ) {
   std::vector< std::string > findings = runVerified( sw, step.time, check, slice );
   sw.stepIs( step );
   verifyNow( sw, findings, {} );
   return findings;
}

std::vector< std::string > stepsVerified( Sim::SimSwitch& sw, std::vector< Sim::Step > const& steps,
                                          Zub::Seconds until ) {
   std::vector< std::string > findings;
   for( Sim::Step const& step : steps ) {
      for( std::string& f : stepVerified( sw, step ) )
         findings.push_back( std::move( f ) );
   }
   for( std::string& f : runVerified( sw, until ) )
      findings.push_back( std::move( f ) );
   return findings;
}

}  // namespace NevQosTest
