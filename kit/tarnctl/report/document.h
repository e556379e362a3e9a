// A report's document, read: what both the page and the comparison need of it.
#pragma once

#include "tarnctl/cell.h"

#include <string>

namespace tarn::ctl
{

// What it is about, for people: "gateway", "radio 1 (radio0)", "wifi0", "wifi0, station 02:00:00:00:01:01".
std::string subjectTitle(const Json& subject);

// A field of an answer. What is hidden is not known, and shown as such.
Cell fieldCell(const Json& field);

// The fields of an answer by the names of the layout: "channel" for "data.channel". Those in arrays are left out.
Fields fieldsOf(const Json& answer);

// Reads a report from a file. Throws UsageError if it is none, or one of another version, or lacks something.
Json readReport(const std::string& path);

} // namespace tarn::ctl
