// The fields of calls, rules and frames, for the way between the processes. In documents they have
// a form of their own (JsonForms.h).
#pragma once

#include <Calls/HardwareCall.h>
#include <Pipeline/Story.h>
#include <Snapshot/Rules.h>
#include <Story/Fields.h>

namespace Story {

// --- Calls

template<> struct Fields< Chip::NamedValue > {
   static void list( auto & named, auto && field ) {
      field( "name", named.name );
      field( "value", named.value );
   }
};

template<> struct Fields< Chip::HardwareCall > {
   static void list( auto & call, auto && field ) {
      field( "operation", call.operation );
      field( "callText", call.callText );
      field( "unit", call.unit );
      field( "entry", call.entry );
      field( "values", call.values );
      field( "returnCode", call.returnCode );
   }
};

// --- Rules

template<> struct Fields< Chip::RuleKey > {
   static void list( auto & key, auto && field ) {
      field( "unit", key.unit );
      field( "group", key.group );
      field( "id", key.id );
   }
};

template<> struct Fields< Chip::Match > {
   static void list( auto & match, auto && field ) {
      field( "data", match.data );
      field( "mask", match.mask );
      field( "modId", match.modId );
      field( "modIdMask", match.modIdMask );
   }
};

template<> struct Fields< Chip::ActionParameters > {
   static void list( auto & parameters, auto && field ) {
      field( "param0", parameters.param0 );
      field( "param1", parameters.param1 );
      field( "ports", parameters.ports );
   }
};

template<> struct Fields< Chip::EntryContent > {
   static void list( auto & content, auto && field ) {
      field( "matches", content.matches );
      field( "actions", content.actions );
      field( "priority", content.priority );
   }
};

template<> struct Fields< Chip::Rule > {
   static void list( auto & rule, auto && field ) {
      field( "key", rule.key );
      field( "name", rule.name );
      field( "isWritten", rule.isWritten );
      field( "content", rule.content );
   }
};

// --- Frames

template<> struct Fields< Chip::TunnelStory > {
   static void list( auto & tunnel, auto && field ) {
      field( "source", tunnel.source );
      field( "destination", tunnel.destination );
      field( "vni", tunnel.vni );
      field( "sourceGport", tunnel.sourceGport );
   }
};

template<> struct Fields< Chip::IpStory > {
   static void list( auto & ip, auto && field ) {
      field( "source", ip.source );
      field( "destination", ip.destination );
   }
};

template<> struct Fields< Chip::InnerStory > {
   static void list( auto & inner, auto && field ) {
      field( "source", inner.source );
      field( "destination", inner.destination );
      field( "vlan", inner.vlan );
      field( "etherType", inner.etherType );
      field( "ip", inner.ip );
   }
};

template<> struct Fields< Chip::IngressStory > {
   static void list( auto & ingress, auto && field ) {
      field( "unit", ingress.unit );
      field( "rule", ingress.rule );
      field( "classId", ingress.classId, kOrNull );
   }
};

template<> struct Fields< Chip::Copy > {
   static void list( auto & copy, auto && field ) {
      field( "intfId", copy.intfId );
      field( "port", copy.port );
      field( "remoteVtep", copy.remoteVtep );
      field( "verdict", copy.verdict );
      field( "rule", copy.rule );
   }
};

template<> struct Fields< Chip::FrameStory > {
   static void list( auto & frame, auto && field ) {
      field( "arrivalPort", frame.arrivalPort );
      field( "arrivalIntfId", frame.arrivalIntfId );
      field( "length", frame.length );
      field( "tunnel", frame.tunnel );
      field( "inner", frame.inner );
      field( "kind", frame.kind );
      field( "dropReason", frame.dropReason );
      field( "ingress", frame.ingress );
      field( "copies", frame.copies );
   }
};

}  // namespace Story
