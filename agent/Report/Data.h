// The data of a report's page as JSON.
//
// The names stand in agent/Report/page/data.js, which reads them. Texts stand once, in `texts`, and
// everywhere else as their numbers.
#pragma once

#include <nlohmann/json.hpp>

#include <Report/Model.h>

namespace Report {

nlohmann::ordered_json dataOf( Model const & model );

}  // namespace Report
