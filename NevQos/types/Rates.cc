#include "NevQos/types/Rates.h"

#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/nev/NevAssert.h"
#include "NevQos/platform/zub/Assert.h"

namespace Nev {

std::uint64_t irToKbps( std::uint64_t rate, Qos::RateUnit unit ) {
   ZUB_TRACE( nevQosTrace, 9, "irToKbps" );
   switch( unit ) {
      case Qos::rateUnitBps_:
         return rate / 1000;
      case Qos::rateUnitKbps_:
         return rate;
      case Qos::rateUnitMbps_:
         return rate * 1000;
      default:
         // Packets per second have no kbps equivalent.
         nevAssert( "Failed(0) Invalid rate unit" );
   }
}

std::uint64_t bsToBytes( std::uint64_t burst, Qos::BurstUnit unit ) {
   ZUB_TRACE( nevQosTrace, 9, "bsToBytes" );
   switch( unit ) {
      case Qos::burstUnitBytes_:
         return burst;
      case Qos::burstUnitKbytes_:
         return burst * 1000;
      case Qos::burstUnitMbytes_:
         return burst * 1000000;
      default:
         // Packets have no byte equivalent.
         nevAssert( "Failed(0) Invalid burst unit" );
   }
}

void validateAndUpdateCir( Zub::Ptr< Qos::AclHwStatus const > const& hw, std::uint64_t& cir,
                           Qos::RateUnit& cirUnit ) {
   ZUB_TRACE( nevQosTrace, 9, "validateAndUpdateCir" );
   ZUB_ASSERT( hw );
   if( cirUnit == Qos::rateUnitPps_ ) {
      std::uint32_t const minPps = hw->policePacketModeMinRatePps();
      std::uint32_t const maxPps = hw->policePacketModeMaxRatePps();
      if( cir < minPps ) {
         ZUB_TRACE( nevQosTrace, 3,
                    "cir (" << cir << ") < policePacketModeMinRatePps (" << minPps
                            << "). Setting cir to " << minPps );
         cir = minPps;
      } else if( cir > maxPps ) {
         ZUB_TRACE( nevQosTrace, 3,
                    "cir (" << cir << ") > policePacketModeMaxRatePps (" << maxPps
                            << "). Setting cir to " << maxPps );
         cir = maxPps;
      }
      return;
   }

   std::uint64_t const cirKbps = irToKbps( cir, cirUnit );
   std::uint32_t const minKbps = hw->policeByteModeMinRateKbps();
   std::uint32_t const maxKbps = hw->policeByteModeMaxRateKbps();
   if( cirKbps < minKbps ) {
      ZUB_TRACE( nevQosTrace, 3,
                 "cirKbps (" << cirKbps << ") < policeByteModeMinRateKbps (" << minKbps
                             << "). Setting cir to " << minKbps << " and cirUnit to Kbps." );
      cir = minKbps;
      cirUnit = Qos::rateUnitKbps_;
   } else if( cirKbps > maxKbps ) {
      ZUB_TRACE( nevQosTrace, 3,
                 "cirKbps (" << cirKbps << ") > policeByteModeMaxRateKbps (" << maxKbps
                             << "). Setting cir to " << maxKbps << " and cirUnit to Kbps." );
      cir = maxKbps;
      cirUnit = Qos::rateUnitKbps_;
   }
}

void validateAndUpdateBc( Zub::Ptr< Qos::AclHwStatus const > const& hw, std::uint32_t& bc,
                          Qos::BurstUnit& bcUnit ) {
   ZUB_TRACE( nevQosTrace, 9, "validateAndUpdateBc" );
   ZUB_ASSERT( hw );
   if( bcUnit == Qos::burstUnitPackets_ ) {
      std::uint32_t const minPackets = hw->policePacketModeMinBurstPackets();
      std::uint32_t const maxPackets = hw->policePacketModeMaxBurstPackets();
      if( bc < minPackets ) {
         ZUB_TRACE( nevQosTrace, 3,
                    "bc (" << bc << ") < policePacketModeMinBurstPackets (" << minPackets
                           << "). Setting bc to " << minPackets );
         bc = minPackets;
      } else if( bc > maxPackets ) {
         ZUB_TRACE( nevQosTrace, 3,
                    "bc (" << bc << ") > policePacketModeMaxBurstPackets (" << maxPackets
                           << "). Setting bc to " << maxPackets );
         bc = maxPackets;
      }
      return;
   }

   // In 64 bits: a 32-bit burst in megabytes does not fit 32 bits as bytes.
   std::uint64_t const bcBytes = bsToBytes( bc, bcUnit );
   std::uint32_t const minBytes = hw->policeByteModeMinBurstBytes();
   std::uint32_t const maxBytes = hw->policeByteModeMaxBurstBytes();
   if( bcBytes < minBytes ) {
      ZUB_TRACE( nevQosTrace, 3,
                 "bcBytes (" << bcBytes << ") < policeByteModeMinBurstBytes (" << minBytes
                             << "). Setting bc to " << minBytes << " and bcUnit to bytes." );
      bc = minBytes;
      bcUnit = Qos::burstUnitBytes_;
   } else if( bcBytes > maxBytes ) {
      ZUB_TRACE( nevQosTrace, 3,
                 "bcBytes (" << bcBytes << ") > policeByteModeMaxBurstBytes (" << maxBytes
                             << "). Setting bc to " << maxBytes << " and bcUnit to bytes." );
      bc = maxBytes;
      bcUnit = Qos::burstUnitBytes_;
   }
}

void validateAndUpdatePir( Zub::Ptr< Qos::AclHwStatus const > const& hw, std::uint64_t cir,
                           Qos::RateUnit cirUnit, std::uint64_t& pir, Qos::RateUnit& pirUnit ) {
   if( pir == 0 ) return;
   ZUB_TRACE( nevQosTrace, 9, "validateAndUpdatePir" );
   ZUB_ASSERT( hw );
   if( pirUnit != Qos::rateUnitPps_ ) {
      std::uint64_t const cirKbps = irToKbps( cir, cirUnit );
      std::uint64_t const pirKbps = irToKbps( pir, pirUnit );
      std::uint64_t const excessKbps = pirKbps - cirKbps;
      std::uint32_t const minKbps = hw->policeByteModeMinRateKbps();
      std::uint32_t const maxKbps = hw->policeByteModeMaxRateKbps();
      if( excessKbps < minKbps ) {
         std::uint64_t const newPir = cirKbps + minKbps;
         ZUB_TRACE( nevQosTrace, 3,
                    "pirKbps (" << pirKbps << ") < policeByteModeMinRateKbps (" << minKbps
                                << ") + cirKbps (" << cirKbps << "). Setting pir to " << newPir
                                << " and pirUnit to Kbps." );
         pir = newPir;
         pirUnit = Qos::rateUnitKbps_;
      } else if( excessKbps > maxKbps ) {
         std::uint64_t const newPir = cirKbps + maxKbps;
         ZUB_TRACE( nevQosTrace, 3,
                    "pirKbps (" << pirKbps << ") > policeByteModeMaxRateKbps (" << maxKbps
                                << ") + cirKbps (" << cirKbps << "). Setting pir to " << newPir
                                << " and pirUnit to Kbps." );
         pir = newPir;
         pirUnit = Qos::rateUnitKbps_;
      }
      return;
   }

   std::uint64_t const excessPps = pir - cir;
   std::uint32_t const minPps = hw->policePacketModeMinRatePps();
   std::uint32_t const maxPps = hw->policePacketModeMaxRatePps();
   if( excessPps < minPps ) {
      std::uint64_t const newPir = cir + minPps;
      // The text names the maximum, but the value is the minimum; kept as it always read.
      ZUB_TRACE( nevQosTrace, 3,
                 "pirPps (" << pir << ") < policePacketModeMaxRatePps (" << minPps << ") + cirPps ("
                            << cir << "). Setting pir to " << newPir );
      pir = newPir;
   } else if( excessPps > maxPps ) {
      std::uint64_t const newPir = cir + maxPps;
      ZUB_TRACE( nevQosTrace, 3,
                 "pirPps (" << pir << ") > policePacketModeMaxRatePps (" << maxPps << ") + cirPps ("
                            << cir << "). Setting pir to " << newPir );
      pir = newPir;
   }
}

void validateAndUpdateBe( Zub::Ptr< Qos::AclHwStatus const > const& hw, std::uint64_t pir,
                          std::uint32_t& be, Qos::BurstUnit& beUnit ) {
   if( pir == 0 ) return;
   ZUB_TRACE( nevQosTrace, 9, "validateAndUpdateBe" );
   ZUB_ASSERT( hw );
   if( beUnit == Qos::burstUnitPackets_ ) {
      std::uint32_t const minPackets = hw->policePacketModeMinBurstPackets();
      std::uint32_t const maxPackets = hw->policePacketModeMaxBurstPackets();
      if( be < minPackets ) {
         ZUB_TRACE( nevQosTrace, 3,
                    "be (" << be << ") < policePacketModeMinBurstPackets (" << minPackets
                           << "). Setting be to " << minPackets );
         be = minPackets;
      } else if( be > maxPackets ) {
         ZUB_TRACE( nevQosTrace, 3,
                    "be (" << be << ") > policePacketModeMaxBurstPackets (" << maxPackets
                           << "). Setting be to " << maxPackets );
         be = maxPackets;
      }
      return;
   }

   std::uint64_t const beBytes = bsToBytes( be, beUnit );
   std::uint32_t const minBytes = hw->policeByteModeMinBurstBytes();
   std::uint32_t const maxBytes = hw->policeByteModeMaxBurstBytes();
   if( beBytes < minBytes ) {
      ZUB_TRACE( nevQosTrace, 3,
                 "beBytes (" << beBytes << ") < policeByteModeMinBurstBytes (" << minBytes
                             << "). Setting be to " << minBytes << " and beUnit to bytes." );
      be = minBytes;
      beUnit = Qos::burstUnitBytes_;
   } else if( beBytes > maxBytes ) {
      ZUB_TRACE( nevQosTrace, 3,
                 "beBytes (" << beBytes << ") > policeByteModeMaxBurstBytes (" << maxBytes
                             << "). Setting be to " << maxBytes << " and beUnit to bytes." );
      be = maxBytes;
      beUnit = Qos::burstUnitBytes_;
   }
}

PolicerParams validatedPolicerParams( Zub::Ptr< Qos::AclHwStatus const > const& hw,
                                      Qos::PolicerConfig const& cfg ) {
   PolicerParams p{ cfg.cir(), cfg.cirUnit(), cfg.bc(), cfg.bcUnit(),
                    cfg.pir(), cfg.pirUnit(), cfg.be(), cfg.beUnit() };
   validateAndUpdateCir( hw, p.cir, p.cirUnit );
   validateAndUpdateBc( hw, p.bc, p.bcUnit );
   // The peak rate is checked against the committed rate already clamped.
   if( p.pir != 0 ) validateAndUpdatePir( hw, p.cir, p.cirUnit, p.pir, p.pirUnit );
   validateAndUpdateBe( hw, p.pir, p.be, p.beUnit );
   return p;
}

}  // namespace Nev

namespace NevHelper {

std::uint64_t getRateParamInKbps( Qos::RateUnit rateUnit, std::uint64_t value ) {
   switch( rateUnit ) {
      case Qos::rateUnitBps_:
         return value / 1000;
      case Qos::rateUnitKbps_:
         return value;
      case Qos::rateUnitMbps_:
         return value * 1000;
      default:
         break;
   }
   ZUB_ASSERT( !"Invalid rate unit" );
   return 0;
}

std::uint64_t getBurstParamInKbits( Qos::BurstUnit burstUnit, std::uint64_t value ) {
   switch( burstUnit ) {
      case Qos::burstUnitBytes_:
         return ( value * 8 ) / 1000;
      case Qos::burstUnitKbytes_:
         return value * 8;
      case Qos::burstUnitMbytes_:
         return value * 8000;
      default:
         break;
   }
   ZUB_ASSERT( !"Invalid burst unit" );
   return 0;
}

std::uint64_t getBurstParamInBytes( Qos::BurstUnit burstUnit, std::uint64_t value ) {
   switch( burstUnit ) {
      case Qos::burstUnitBytes_:
         return value;
      case Qos::burstUnitKbytes_:
         return value * 1000;
      case Qos::burstUnitMbytes_:
         return value * 1000000;
      default:
         break;
   }
   ZUB_ASSERT( !"Invalid burst unit" );
   return 0;
}

}  // namespace NevHelper
