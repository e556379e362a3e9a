// A setting of radios that a verb shows for all of them, or changes for one: `tarnctl channel [RADIO] [NUMBER]`.
#pragma once

#include "tarnctl/listing.h"
#include "tarnctl/verbs/verbs.h"

namespace tarn::ctl
{

struct RadioSetting
{
    const char* name;       // of the verb, and of what it changes
    const char* changeKind; // of the document that says what has changed
    const char* field;      // of TarnRadioData and TarnRadioCfg
    const char* value;      // "NUMBER", as the help has it
    const char* meaning;    // of the value
    const char* footer;
    std::vector<Column> columns;
    const char* choices;                                                         // what can be set, in a row of the list
    void (*complete)(Survey& survey, const Radio& radio, Fields& row) = nullptr; // what the radio's record does not tell
    const char* automaticField = nullptr;                                        // switched on by "auto", if there is one
};

void addRadioSetting(Verbs& verbs, const RadioSetting& setting, const char* description);

} // namespace tarn::ctl
