// leaf1 with the plug-in that comes with the program, for tests of the audit.
#pragma once

#include <AgentRun.h>
#include <Story/AuditText.h>

// What the switch of a test has.
struct Leaf {
   std::string variant = "egress-mask";
   std::string units = "{ 0: { module: 1 } }";
   std::string tcam = "{ ingress: 64, egress: 64 }";
   std::string ports =
      "      Ethernet1: { unit: 0, port: 1 }\n"
      "      Ethernet2: { unit: 0, port: 2 }\n"
      "      Ethernet3: { unit: 0, port: 3 }\n"
      "      Ethernet4: { unit: 0, port: 4 }\n";
   std::string portChannels = "{ Port-Channel2: [ Ethernet3, Ethernet4 ] }";
   std::string segments = "{ Port-Channel2: [ 10.0.0.2, 10.0.0.4 ], Ethernet1: [ 10.0.0.4 ] }";
   std::string vteps =
      "{ 10.0.0.2: { virtual-port: 2 }, 10.0.0.3: { virtual-port: 3 }, 10.0.0.4: { virtual-port: "
      "0x10004 } }";
   std::string tunnels = "{ Vxlan1: { vrf-vni: { red: 50001, blue: none } } }";

   std::string text( std::string const & steps ) const {
      return "scenario: leaf\nswitch:\n   name: leaf1\n   variant: " + variant +
             "\n   units: " + units + "\n   tcam: " + tcam + "\n   interfaces:\n" + ports +
             "   port-channels: " + portChannels + "\nevpn:\n   segments: " + segments +
             "\n   vteps: " + vteps + "\n   tunnel-interfaces: " + tunnels + "\nsteps:\n" + steps;
   }
};

inline Leaf classIdLeaf() {
   Leaf leaf;
   leaf.variant = "class-id";
   return leaf;
}

// Two chips, with a port channel over both. Per-VNI rules are for switches with one.
inline Leaf twoUnitLeaf( std::string const & variant ) {
   Leaf leaf;
   leaf.variant = variant;
   leaf.units = "{ 0: { module: 1 }, 1: { module: 5 } }";
   leaf.ports =
      "      Ethernet1: { unit: 0, port: 1 }\n"
      "      Ethernet2: { unit: 1, port: 1023 }\n"
      "      Ethernet3: { unit: 0, port: 3 }\n"
      "      Ethernet4: { unit: 1, port: 4 }\n";
   leaf.tunnels = "{}";
   return leaf;
}

// Runs a scenario with the real plug-in, in this process.
class AuditRun : public AgentRun {
 protected:
   void play( Leaf const & leaf, std::string const & steps, Host::AgentConfig config = {} ) {
      scenario = Steps::readScenarioText( leaf.text( steps ), "leaf.yaml" );
      config.scenario = "leaf.yaml";
      config.plugin = Support::plugin();
      Host::Agent( scenario, config, ring.bytes(), story ).run();
      for ( auto const & wrong : story.all< Story::BadInput >() ) {
         ADD_FAILURE() << wrong.text;
      }
   }

   // Comes up, does these steps, and is audited.
   Story::Audited auditAfter( Leaf const & leaf, std::string const & steps ) {
      play( leaf, "   - ready: subagents::l2Ready\n" + steps + "   - verify: audit\n" );
      return story.all< Story::Audited >().at( 0 );
   }

   // The kinds found, "missing-rule no-room"; empty: nothing.
   static std::string kinds( Story::Audited const & audited ) {
      std::string text;
      for ( Story::Difference const & difference : audited.differences ) {
         text += ( text.empty() ? "" : " " ) + std::string( nameOf( difference.kind ) );
      }
      return text;
   }

   // The differences in words, for the message of a failed test.
   static std::string words( Story::Audited const & audited ) {
      std::string text;
      for ( std::string const & line : linesOf( audited, Story::Style( false ) ) ) {
         text += line + "\n";
      }
      return text;
   }
};
