// What a call told, as fields of a report: by path, each with its value and what is known of it.
//
//     "data.channel": { "value": 44 }                            a field of the record `data`
//     "rssi": { "value": -61, "unit": "dBm", "volatile": true }  a word
//     "data.passphrase": { "value": null, "hidden": true }       a secret that is left out; else it has "secret": true
#pragma once

#include "tarnctl/call.h"
#include "tarnctl/fields.h"

#include <cstdint>
#include <set>
#include <string>

namespace tarn::ctl
{

class AnswerReader
{
public:
    // Without secrets, they are hidden, and so are bytes that no layout describes, in which there may be some.
    explicit AnswerReader(bool hasSecrets);

    Json fields(const Report& report) const;

    // Whether the field counts something; then it has a size in bytes, behind which it starts again from 0.
    static bool isCounter(const Json& field);

private:
    struct Number
    {
        std::int64_t value = 0;
        std::uint32_t size = 0; // bytes
    };

    void addOutput(Json& fields, const Report& report, const PreparedArgument& output) const;
    void addNumbers(Json& fields, const LibraryFunction& function, const PreparedArgument& output) const;
    void addDecoded(Json& fields, const std::string& function, const std::string& prefix, const layout::Decoded& decoded) const;
    Json numberField(Number number, const layout::Meaning* meaning, const std::string& function, const std::string& name) const;
    Json hiddenUnlessAsked(Json field, const std::string& name, bool isNumber) const;
    Json opaque(const Bytes& bytes, const std::string& function) const;

    const bool hasSecrets_;
    const std::set<std::string> settable_; // names of fields that can be set
};

} // namespace tarn::ctl
