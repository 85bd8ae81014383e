// Small entities and recording reactors shared by the runtime tests.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "NevQos/platform/zub/Entity.h"

namespace ZubTest {

#define ZUB_TEST_SLOT_ATTRS( X ) X( value, Weight, weight, int, 0 )
ZUB_ENTITY( Slot, Zub::String, ZUB_TEST_SLOT_ATTRS );

// Two values, a keyed collection and owned children, in this declared order.
#define ZUB_TEST_WIDGET_ATTRS( X )              \
   X( value, Version, version, double, 0.0 )    \
   X( value, Label, label, Zub::String, "" )    \
   X( keyed, Member, member, int, Zub::String ) \
   X( child, Slot, slot, Zub::String, Slot )
ZUB_ENTITY( Widget, Zub::String, ZUB_TEST_WIDGET_ATTRS );

// A derived entity: its reactors hear Widget's attributes too.
#define ZUB_TEST_GADGET_ATTRS( X )  \
   X( value, Speed, speed, int, 0 ) \
   X( keyed, Port, port, int, bool )
class Gadget : public Widget {
 public:
   explicit Gadget( Zub::String const& key ) : Widget( key ) {}
   ZUB_ENTITY_BODY( Gadget, Widget, ZUB_TEST_GADGET_ATTRS )
};

// Records each callback as text ("version", "member:3", "member!" for the immediate form) in
// its own list and, if given, in a journal shared with other reactors under a tag. `hook` runs
// inside each callback, so a test can act from inside a delivery.
template< class N >
class WidgetRecorder : public N {
 public:
   explicit WidgetRecorder( std::vector< std::string >* journal = nullptr, std::string tag = "" )
       : journal_( journal ), tag_( std::move( tag ) ) {}

   std::vector< std::string > calls;
   std::function< void( std::string const& ) > hook;
   bool immediate = false;

   bool notificationImmediate() const override { return immediate; }
   void onVersion() override { note( "version" ); }
   void onLabel() override { note( "label" ); }
   void onMember( int const& k ) override { note( "member:" + std::to_string( k ) ); }
   void onMemberzubImmediate() override { note( "member!" ); }
   void onSlot( Zub::String const& k ) override { note( "slot:" + k.stdString() ); }
   void onSlotzubImmediate() override { note( "slot!" ); }

 protected:
   // The own list is written after the hook, as a reactor that goes on after its handler.
   void note( std::string const& what ) {
      if( journal_ ) journal_->push_back( tag_ + what );
      if( hook ) hook( what );
      calls.push_back( what );
   }

 private:
   std::vector< std::string >* journal_;
   std::string tag_;
};

using WidgetReactor = WidgetRecorder< Widget::Notifiee >;

class GadgetReactor : public WidgetRecorder< Gadget::Notifiee > {
 public:
   using WidgetRecorder::WidgetRecorder;
   void onSpeed() override { note( "speed" ); }
   void onPort( int const& k ) override { note( "port:" + std::to_string( k ) ); }
   void onPortzubImmediate() override { note( "port!" ); }
};

using Calls = std::vector< std::string >;

}  // namespace ZubTest
