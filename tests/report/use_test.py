#!/usr/bin/python3 -B
"""A person uses a report: with the mouse, with the keyboard alone, on a telephone, in the dark, on
paper, and with ten thousand frames."""

import base64
import re
import struct
import subprocess

from selenium.webdriver.common.keys import Keys

from page import NARROW, PageTest, main, reported, scenario


def repeated_capture(source, target, frames):
    """A capture of that many frames at least: those of the source, again and again."""
    content = source.read_bytes()
    header, body = content[:24], content[24:]
    count = place = 0
    while place < len(body):
        place += 16 + struct.unpack_from("<I", body, place + 8)[0]
        count += 1
    target.write_bytes(header + body * (frames // count + 1))


# A person notices a longer time without a new picture, in milliseconds.
A_STALL = 500

# For each deed the longest time from it to the picture that shows it.
LONGEST_STALLS = """
   const done = arguments[ 0 ], node = byId( 'list' ), worst = { scroll: 0, search: 0, click: 0 };
   const texts = [ '', 'masked', '10.0.0.2 Port-Channel2', 'nothing has this' ];
   const deeds = {
      scroll: () => { node.scrollTop += 2600; },
      search: n => searchIs( texts[ n % texts.length ] ),
      click: n => node.querySelectorAll( '.row .outcome' )[ n % 9 ].click()
   };
   const wanted = Object.keys( deeds ).flatMap( name => Array( 40 ).fill( name ) );
   requestAnimationFrame( function picture() {
      const name = wanted.shift(), begin = performance.now();
      if ( name === undefined ) {
         done( worst );
         return;
      }
      deeds[ name ]( wanted.length );
      requestAnimationFrame( () => requestAnimationFrame( () => {
         worst[ name ] = Math.max( worst[ name ], performance.now() - begin );
         picture();
      } ) );
   } );
"""


class Use(PageTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.two_leaves = cls.page(cls, "two-leaves")
        reported(scenario("two-leaves"), cls.two_leaves)
        cls.stopped = cls.page(cls, "stopped")
        reported(scenario("limits/full-segment-goes"), cls.stopped)

    def focused(self):
        return self.script("return document.activeElement.id")

    def rows(self):
        return self.all("#list .row")

    def details(self):
        return self.text("#details")

    # --- The mouse

    def test_a_click_on_a_frame_shows_its_way_and_its_explanation(self):
        self.open(self.two_leaves, "#/frame/136")
        self.assertEqual(self.text("#drawing-title"), "Frame 136 in step 11")
        self.script("history.replaceState( null, '', '#/step/12' ); follow()")
        self.assertEqual(self.all("#drawing .path"), [])

        self.one("#list .row[data-place='135'] .outcome").click()
        self.assertTrue(self.browser.current_url.endswith("#/frame/136"))
        self.assertEqual([copy.get_attribute("data-copy") for copy in self.all("#drawing .path .sent")],
                         ["Ethernet1"])
        self.assertEqual([copy.get_attribute("data-copy") for copy in self.all("#drawing .path .kept")],
                         ["Port-Channel2"])
        self.assertEqual([back.get_attribute("data-place") for back in self.all("#drawing .back")],
                         ["Port-Channel2"])
        self.assertEqual(self.text("#drawing .stop-mark title"),
                         "Port-Channel2: masked by unit 0 entry 3")
        self.assertIn("entry 3 matches, and wins: no other rule matches", self.details())
        self.assertIn("verdict: the broadcast frame from VTEP 10.0.0.2 is sent to Ethernet1; kept back "
                      "from Port-Channel2 by unit 0 entry 3", self.details())
        self.assertEqual(self.script("return run.steps[ state.step ].number"), 11)
        self.expect_quiet()

    def test_a_rule_leads_to_its_state_and_to_its_frames(self):
        self.open(self.two_leaves, "#/rule/2")
        details = self.details()
        self.assertIn("VTEP 10.0.0.2 shares segment Port-Channel2 through Ethernet3 and Ethernet4",
                      details)
        self.assertIn("/evpn/status/segmentStatus[Port-Channel2] remoteTep[10.0.0.2] added", details)
        numbers = [link.text for link in self.all("#details .numbers a")]
        self.assertEqual(len(numbers), 11)
        self.assertIn("136", numbers)

        self.one("#details [data-only-rule]").click()
        self.assertEqual(len(self.rows()), 11)
        self.one("#chips .chip:last-child").click()
        self.assertEqual(self.script("return list.items.length"), 357)

    def test_a_link_to_a_place_marks_it_and_the_way_back_works(self):
        self.open(self.two_leaves, "#/rule/2")
        self.one("#details a[href='#/place/10.0.0.2']").click()
        self.wait_for("the VTEP", lambda: "VTEP 10.0.0.2" in self.text("#details h2"))
        self.assertEqual(self.all("#drawing .on")[-1].get_attribute("data-place"), "10.0.0.2")
        self.assertIn("protected", self.details())
        self.browser.back()
        self.wait_for("the rule", lambda: self.text("#details h2") == "unit 0 entry 3")

    def test_chips_limit_the_list(self):
        self.open(self.two_leaves)
        for name, count in (("kept back", 22), ("dropped", 159), ("arrives twice", 11)):
            chip = [one for one in self.all("#chips .chip") if one.text == name][0]
            chip.click()
            self.assertEqual(self.script("return list.items.length"), count, name)
            [one for one in self.all("#chips .chip") if one.text == name][0].click()

    def test_a_stop_is_told_at_once(self):
        self.open(self.stopped)
        self.assertEqual(self.text("#verdict"), "stopped, as expected")
        self.assertIn("unitTepIpToEntry->esPbmpHas( tepIp )", self.details())
        self.assertIn("The segment of a VTEP without a rule goes", self.details())
        self.assertIn("stopped, as expected", self.text("#steps .row:last-child"))
        self.assertEqual(len(self.all("#tcam .stopped")), 1)

    def test_the_step_in_view_is_in_sight(self):
        self.open(self.two_leaves)
        row = self.script("const box = one => one.getBoundingClientRect();"
                          "return [ box( document.querySelector( '#steps [aria-selected=true]' ) ).bottom,"
                          "         box( byId( 'steps' ) ).bottom ]")
        self.assertLess(row[0], row[1] + 1)

    def test_texts_of_a_scenario_are_shown_and_not_carried_out(self):
        hostile = "</script ><script >broken = 1</script ><img src=x onerror='broken = 1'><!--"
        file = self.page("hostile").with_suffix(".yaml")
        file.write_text("scenario: hostile\n"
                        f"based-on: {scenario('start-up')}\n"
                        "variant: egress-mask\n"
                        f'description: "{hostile}"\n'
                        f'steps: [ {{ note: "{hostile}" }} ]\n')
        reported(file, self.page("hostile"))
        self.open(self.page("hostile"))
        self.assertEqual(self.text("#details p"), hostile)
        self.assertIn(hostile, self.text("#steps [aria-selected=true]"))
        self.script("byId( 'search' ).value = arguments[ 0 ]; searchIs( arguments[ 0 ] )", hostile)
        self.assertIsNone(self.script("return typeof broken === 'undefined' ? null : broken"))
        self.assertEqual(self.all("img"), [])
        self.expect_quiet()

    # --- The keyboard alone

    def test_the_keyboard_is_enough(self):
        self.open(self.two_leaves)
        self.type("1")
        self.assertEqual(self.focused(), "list")
        self.type(Keys.END)
        self.assertIn("frame 357", self.details())
        self.type(Keys.ARROW_UP, "k")
        self.assertIn("frame 355", self.details())
        chosen = self.script("return document.activeElement.getAttribute( 'aria-activedescendant' )")
        self.assertEqual(self.text("#" + chosen + " .number"), "355")

        self.type("2", Keys.HOME)
        self.assertIn("unit 0 entry 1", self.text("#details h2"))
        self.type("s", Keys.HOME)
        self.assertIn("published before", self.text("#details h2"))
        self.type("]", "]")
        self.assertIn("step 1", self.text("#details h2"))
        self.type("[")
        self.assertIn("start-up", self.text("#details h2"))
        self.type("?")
        self.assertTrue(self.script("return byId( 'help' ).open"))
        self.type(Keys.ESCAPE)
        self.assertFalse(self.script("return byId( 'help' ).open"))

    def test_the_tabulator_reaches_every_part(self):
        self.open(self.two_leaves)
        self.assertEqual(self.script("return [ ...document.querySelectorAll( '[role=listbox]' ) ]"
                                     ".map( node => node.tabIndex )"), [0, 0])
        reached = set()
        for _ in range(60):
            self.type(Keys.TAB)
            reached.add(self.script(
                "const at = document.activeElement; const part = at.closest( '[id]' );"
                "return part ? part.id : ''"))
        self.assertLessEqual({"search", "help-button", "steps", "drawing", "tab-frames", "list"}, reached)

    def test_search_finds_in_every_list(self):
        self.open(self.two_leaves)
        self.type("/", "10.0.0.2 Port-Channel2 masked")
        self.assertEqual(self.text("#tab-frames"), "Frames 11 of 357")
        self.assertEqual(self.text("#tab-rules"), "Rules 0 of 4")
        self.assertEqual(len(self.rows()), 11)
        self.type(Keys.ENTER)
        self.assertEqual(self.focused(), "list")
        self.type(Keys.ESCAPE)
        self.assertEqual(self.text("#tab-frames"), "Frames 357")
        self.type("/", "l2ready")
        self.assertEqual(self.text("#tab-messages"), "Messages 1 of 47")
        self.assertTrue(self.one("#steps .row[data-place='0']").get_attribute("class").startswith("off"))
        self.type(Keys.ESCAPE, "/", "nothing has this")
        self.assertEqual(self.rows(), [])
        self.assertEqual(self.text("#lists .note"), "Nothing here.")

    # --- Other surfaces

    def colours(self):
        return self.script(
            "const style = getComputedStyle( document.body );"
            "return [ style.backgroundColor, style.color ]")

    def test_light_and_dark_follow_the_browser(self):
        self.open(self.two_leaves)
        light = self.colours()
        self.open(self.two_leaves, media="dark")
        self.assertEqual([light, self.colours()],
                         [["rgb(255, 255, 255)", "rgb(28, 33, 40)"],
                          ["rgb(20, 23, 28)", "rgb(221, 227, 234)"]])

    def test_a_telephone_shows_all_of_it_without_scrolling_aside(self):
        for page, address in ((self.two_leaves, "#/frame/136"), (self.two_leaves, "#/rule/2"),
                              (self.two_leaves, ""), (self.stopped, "")):
            self.open(page, address, size=NARROW)
            self.assertEqual(self.script("return document.documentElement.scrollWidth"), NARROW[0])
            self.assertLessEqual(self.script("return byId( 'drawing' ).scrollWidth"), NARROW[0])
        self.open(self.two_leaves, "#/frame/136", size=NARROW)
        self.assertEqual(len(self.all("#drawing .path .kept")), 1)
        drawing = self.one("#drawing svg").rect
        self.assertLess(drawing["y"] + drawing["height"] - self.script("return scrollY"),
                        self.script("return byId( 'details' ).getBoundingClientRect().top"),
                        "the details leave the drawing in sight")
        self.one("#details .close").click()
        self.assertFalse(self.one("#details").is_displayed())

    def printed(self):
        """The text on the sheets that the browser prints."""
        sheets = self.page("sheets").with_suffix(".pdf")
        sheets.write_bytes(base64.b64decode(
            self.browser.execute_cdp_cmd("Page.printToPDF", {"landscape": True})["data"]))
        return subprocess.run(["pdftotext", "-layout", sheets, "-"], capture_output=True, check=True,
                              text=True).stdout

    def test_paper_gets_all_rows(self):
        self.open(self.two_leaves)
        self.assertLess(len(self.rows()), 100)
        text = self.printed()
        frames = re.findall(r"^[ \f]*(\d+) +\d+ +\S+ {2,}\S+ {2,}\S", text, re.MULTILINE)
        self.assertEqual([int(number) for number in frames], list(range(1, 358)))
        self.assertRegex(text, r"\n[ \f]*23 teardown\n")
        self.assertLess(len(self.rows()), 100)

    # --- Much of it

    def test_ten_thousand_frames_are_quick(self):
        capture = self.page("many").with_suffix(".pcap")
        repeated_capture(scenario("captures").parent / "fabric-v4.pcap", capture, 12000)
        many = capture.with_suffix(".yaml")
        many.write_text("scenario: many\n"
                        f"based-on: {scenario('two-leaves')}\n"
                        "variant: egress-mask\n"
                        "steps:\n"
                        f"  - frames: {{ capture: {capture}, on: Ethernet49 }}\n")
        reported(many, self.page("many"))
        self.open(self.page("many"))
        load = self.script("return performance.getEntriesByType( 'navigation' )[ 0 ].loadEventEnd")
        frames = self.script("return run.listed")
        rows = len(self.rows())
        worst = self.browser.execute_async_script(LONGEST_STALLS)
        print(f"{frames} frames: loaded in {load:.0f} ms, {rows} rows in the page, "
              f"{self.page('many').stat().st_size} bytes; the longest time to the next picture, in "
              f"ms: {worst}")
        self.assertGreater(frames, 12000)
        self.assertLess(rows, 100)
        self.assertLess(load, 5000)
        for deed in ("scroll", "search", "click"):
            self.assertLess(worst[deed], A_STALL, deed)
        self.assertEqual(self.script("return run.explained"), 10000)
        self.assertIn("The first 10,000 frames of ", self.text("#notices"))
        self.script("location.hash = '#/frame/11000'; follow()")
        self.assertIn("for this one ask vornal explain", self.details())
        self.expect_quiet()


main()
