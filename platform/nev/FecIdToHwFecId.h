// The FEC service's tables: the QoS agent asks for the chip's id of each FEC it needs
// (FecIdToHwFecIdRequest), and the service answers with the id once it knows it
// (FecIdToHwFecIdResponse). Shared tables of plain records.
#pragma once

#include <cstddef>
#include <cstdint>

#include "NevQos/platform/glarn/FecId.h"
#include "NevQos/platform/glarn/GlarnMap.h"

namespace Nev {

// A FEC whose hardware id is wanted. The requester sets nothing but the key.
struct HwFecIdRequest {
   Glarn::Fib::FecId key = 0;
   bool operator==( HwFecIdRequest const& ) const = default;
};

// The chip's id of a FEC.
struct FecToHwFecId {
   Glarn::Fib::FecId key = 0;
   std::uint64_t hwFecId = 0;
   bool operator==( FecToHwFecId const& ) const = default;
};
static_assert( offsetof( FecToHwFecId, hwFecId ) == 8 );

class FecIdToHwFecIdRequest : public Glarn::GlarnMap< HwFecIdRequest > {
 public:
   using Store = Glarn::GlarnStore< HwFecIdRequest >;
   class Notifiee : public Glarn::GlarnMap< HwFecIdRequest >::Notifiee {
    public:
      Zub::Ptr< FecIdToHwFecIdRequest const > notifier() const {
         return static_cast< FecIdToHwFecIdRequest const* >( this->zubNotifier() );
      }
      virtual void onHwFecIdRequest( Glarn::Fib::FecId const& ) {}
      virtual void onHwFecIdRequestzubImmediate() {}

    private:
      void onRecord( Glarn::Fib::FecId const& fecId ) final { onHwFecIdRequest( fecId ); }
      void onRecordzubImmediate() final { onHwFecIdRequestzubImmediate(); }
   };
   using GlarnMap::GlarnMap;
   void hwFecIdRequestIs( HwFecIdRequest const& request ) { write( request ); }
   void hwFecIdRequestDel( Glarn::Fib::FecId fecId ) { remove( fecId ); }
   void hwFecIdRequestDelAll() { cleanup(); }
};

// The service's answers by FEC. Its layer-2 interface ids are not read by the QoS agent and are
// not kept here.
class FecIdToHwFecIdResponse : public Glarn::GlarnMap< FecToHwFecId > {
 public:
   using Store = Glarn::GlarnStore< FecToHwFecId >;
   class Notifiee : public Glarn::GlarnMap< FecToHwFecId >::Notifiee {
    public:
      Zub::Ptr< FecIdToHwFecIdResponse const > notifier() const {
         return static_cast< FecIdToHwFecIdResponse const* >( this->zubNotifier() );
      }
      virtual void onHwFecId( Glarn::Fib::FecId const& ) {}
      virtual void onHwFecIdzubImmediate() {}

    private:
      void onRecord( Glarn::Fib::FecId const& fecId ) final { onHwFecId( fecId ); }
      void onRecordzubImmediate() final { onHwFecIdzubImmediate(); }
   };
   using GlarnMap::GlarnMap;
   void hwFecIdIs( FecToHwFecId const& response ) { write( response ); }
   void hwFecIdDel( Glarn::Fib::FecId fecId ) { remove( fecId ); }
};

}  // namespace Nev
