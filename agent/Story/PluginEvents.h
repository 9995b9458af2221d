// Events of the plug-in: its requests to the agent, its traces and its log lines.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include <Quelm/Integers.h>
#include <Story/Fields.h>
#include <VornalTcam/EntryManager.h>

namespace Story {

class Document;

struct PluginLoaded {
   static constexpr char const * kName = "pluginLoaded";
   std::string file;
   std::vector< std::string > mounters;

   static void fields( auto & event, auto && field ) {
      field( "file", event.file );
      field( "mounters", event.mounters );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

struct MountAsked {
   static constexpr char const * kName = "mountAsked";
   std::string path;
   std::string type;
   std::string flags;

   static void fields( auto & event, auto && field ) {
      field( "path", event.path );
      field( "type", event.type );
      field( "flags", event.flags );
   }
   bool isToWrite() const { return flags.starts_with( 'w' ); }
   std::string words() const;
   void addTo( Document & document ) const;
};

struct MountsDone {
   static constexpr char const * kName = "mountsDone";
   std::string mounter;
   std::string status;  // "complete", "partial", "failed"
   std::vector< std::string > problems;

   static void fields( auto & event, auto && field ) {
      field( "mounter", event.mounter );
      field( "status", event.status );
      field( "problems", event.problems );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

struct EntityLookedUp {
   static constexpr char const * kName = "entityLookedUp";
   std::string path;
   std::string type;  // empty without an entity

   static void fields( auto & event, auto && field ) {
      field( "path", event.path );
      field( "type", event.type, kOrNull );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

struct SharedEntityAsked {
   static constexpr char const * kName = "sharedEntityAsked";
   std::string name;
   std::string type;  // empty without an entity

   static void fields( auto & event, auto && field ) {
      field( "name", event.name );
      field( "type", event.type, kOrNull );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

struct TcamGroupAsked {
   static constexpr char const * kName = "tcamGroupAsked";
   Vornal::TcamGroupAssignment group = 0;
   bool isThere = false;

   static void fields( auto & event, auto && field ) {
      field( "group", event.group );
      field( "isThere", event.isThere );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

struct VariantChosen {
   static constexpr char const * kName = "variantChosen";
   std::string variant;  // "egress-mask", "class-id"
   std::string type;

   static void fields( auto & event, auto && field ) {
      field( "variant", event.variant );
      field( "type", event.type );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

struct DependencyPointReady {
   static constexpr char const * kName = "dependencyPointReady";
   std::string point;
   bool isOfPlugin = false;

   static void fields( auto & event, auto && field ) {
      field( "point", event.point );
      field( "isOfPlugin", event.isOfPlugin );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

struct Traced {
   static constexpr char const * kName = "traced";
   std::string handle;
   int level = 0;
   std::string text;

   static void fields( auto & event, auto && field ) {
      field( "handle", event.handle );
      field( "level", event.level );
      field( "text", event.text );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

struct Logged {
   static constexpr char const * kName = "logged";
   std::string name;
   std::string line;

   static void fields( auto & event, auto && field ) {
      field( "name", event.name );
      field( "line", event.line );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

// The plug-in's own pass over its rules. A pass that begins, and has no later event, has stopped
// the process.
struct PluginPass {
   static constexpr char const * kName = "pluginPass";
   enum class State {
      Begins,
      Held,
      Absent,  // there is no state machine yet
      Skipped  // it compared nothing
   };
   State state = State::Begins;
   std::string reason{};  // why it was skipped

   static void fields( auto & event, auto && field ) {
      field( "state", event.state );
      field( "reason", event.reason );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

using PluginEvents =
   std::variant< PluginLoaded, MountAsked, MountsDone, EntityLookedUp, SharedEntityAsked,
                 TcamGroupAsked, VariantChosen, DependencyPointReady, Traced, Logged, PluginPass >;

}  // namespace Story
