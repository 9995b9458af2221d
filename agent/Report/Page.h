// The page of a report: one HTML text that holds its style, its scripts and its data, and asks for
// nothing else.
//
// The parts are files in agent/Report/page/, compiled in by the build. page.html names the others
// as a page does that lies beside them; here each stands in the place of its name.
#pragma once

#include <string>
#include <string_view>

#include <Report/Model.h>

namespace Report {

// The first line of every page.
inline constexpr std::string_view kFirstLine = "<!DOCTYPE html><!-- report of vornal run -->\n";

std::string pageOf( Model const & model );

// The JSON for a place between tags of HTML: no text in it can end the script that holds it.
std::string escaped( std::string const & json );

struct PageFile {
   std::string_view name;
   std::string_view text;
};
// The file in agent/Report/page/ of that name. Throws std::out_of_range.
std::string_view pageFile( std::string_view name );

}  // namespace Report
