#include "c_header.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <sstream>

namespace tarn::layout
{

namespace
{

bool isUpper(char character)
{
    return std::isupper(static_cast<unsigned char>(character)) != 0;
}

bool isLower(char character)
{
    return std::islower(static_cast<unsigned char>(character)) != 0;
}

std::string upperCase(std::string text)
{
    for (char& character : text)
        character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    return text;
}

// The name of a constant.
std::string constantName(const std::string& name)
{
    return upperCase(cName(name));
}

// A text of the layout must not end the comment that it is put into.
std::string inComment(std::string text)
{
    for (std::size_t end = text.find("*/"); end != std::string::npos; end = text.find("*/", end))
        text.replace(end, 2, "* /");
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

std::string explained(const std::string& what, const Meaning& meaning)
{
    std::string text = what;
    if (!meaning.unit.empty())
        text += ", in " + meaning.unit;
    if (!meaning.description.empty())
        text += (text.empty() ? "" : "; ") + meaning.description;
    if (meaning.values != nullptr && !meaning.values->name.empty())
        text += "; enum tarn_" + cName(meaning.values->name);
    for (std::size_t i = 0; i < meaning.texts.size(); ++i)
        text += (i == 0 ? "; one of \"" : "\", \"") + meaning.texts[i] + (i + 1 == meaning.texts.size() ? "\"" : "");
    return inComment(text);
}

std::string numberType(const Field& field)
{
    return (field.type == FieldType::kSigned ? "int" : "uint") + std::to_string(8 * field.size) + "_t";
}

// One of the records, blocks and events, while its functions are written.
class Accessors
{
public:
    // `type` is what the functions take a pointer to: the record's type, or void.
    Accessors(std::ostream& out, const Structure& structure, std::string type)
        : out_(out), prefix_(structurePrefix(structure.name)), type_(std::move(type))
    {
        out_ << "\n/* --- " << inComment(structure.name) << " --- */\n\n"
             << "#define " << upperCase(prefix_) << "_SIZE " << structure.size << "u /* bytes */\n";
        if (type_ != "void")
            out_ << "typedef char " << prefix_ << "_has_the_expected_size[sizeof(" << type_ << ") == " << structure.size
                 << " ? 1 : -1];\n";
        for (const Field& field : structure.fields)
            if (field.type == FieldType::kArray)
                writeArray(field, structure);
            else
                writeField(field, cName(field.name), std::to_string(field.offset), "", "");
    }

private:
    static std::string structurePrefix(const std::string& name)
    {
        const std::string prefix = cName(name);
        return prefix.rfind("tarn_", 0) == 0 ? prefix : "tarn_" + prefix;
    }

    std::string getter(const std::string& result, const std::string& name, const std::string& parameters) const
    {
        return "static inline " + result + " " + prefix_ + "_" + name + "(const " + type_ + "* record" + parameters + ")\n";
    }

    std::string setter(const std::string& result, const std::string& name, const std::string& parameters) const
    {
        return "static inline " + result + " " + prefix_ + "_set_" + name + "(" + type_ + "* record" + parameters + ")\n";
    }

    // `where` is the place of the field in the record, `index` a parameter that it depends on, and `note` says which it may be.
    void writeField(const Field& field, const std::string& name, const std::string& where, const std::string& index,
                    const std::string& note)
    {
        const std::string constant = upperCase(prefix_ + "_" + name);
        writeOwnValues(field, constant);
        out_ << "\n/* " << explained(field.name.empty() ? name : field.name, field.meaning) << note << " */\n";
        switch (field.type)
        {
        case FieldType::kNumber:
        case FieldType::kSigned:
            return writeNumber(numberType(field), name, where, index);
        case FieldType::kText:
            return writeText(field, name, constant, where, index);
        default:
            return writeBytes(field, name, where, index);
        }
    }

    void writeOwnValues(const Field& field, const std::string& constant)
    {
        const Meaning& meaning = field.meaning;
        if (meaning.values != nullptr && meaning.values->name.empty())
            for (const NamedValue& value : meaning.values->values)
                out_ << "#define " << constant << "_" << constantName(value.name) << " ((" << numberType(field) << ")"
                     << value.value << ")\n";
        for (const Flag& flag : meaning.flags)
            out_ << "#define " << constant << "_" << constantName(flag.name) << " ((" << numberType(field) << ")(("
                 << "uint" << 8 * field.size << "_t)1 << " << flag.bit << "))\n";
    }

    void writeNumber(const std::string& type, const std::string& name, const std::string& where, const std::string& index)
    {
        out_ << getter(type, name, index) << "{\n    " << type << " value;\n    memcpy(&value, (const unsigned char*)record + "
             << where << ", sizeof value);\n    return value;\n}\n\n"
             << setter("void", name, index + ", " + type + " value") << "{\n    memcpy((unsigned char*)record + " << where
             << ", &value, sizeof value);\n}\n";
    }

    void writeText(const Field& field, const std::string& name, const std::string& constant, const std::string& where,
                   const std::string& index)
    {
        out_ << "#define " << constant << "_SIZE " << field.size + 1 << "u /* bytes for any text of it, and a NUL */\n"
             << getter("const char*", name, index + ", char* text") << "{\n    memcpy(text, (const unsigned char*)record + "
             << where << ", " << field.size << ");\n    text[" << field.size << "] = '\\0';\n    return text;\n}\n\n"
             << "/* Returns 0; or -1 for a text of more than " << field.size - 1 << " bytes, which changes nothing. */\n"
             << setter("int", name, index + ", const char* text")
             << "{\n    const size_t length = strlen(text);\n    if (length >= " << field.size
             << ")\n        return -1;\n    memset((unsigned char*)record + " << where << ", 0, " << field.size
             << ");\n    memcpy((unsigned char*)record + " << where << ", text, length);\n    return 0;\n}\n";
    }

    void writeBytes(const Field& field, const std::string& name, const std::string& where, const std::string& index)
    {
        out_ << "/* " << field.size << " bytes, within the record. */\n"
             << getter("const uint8_t*", name, index) << "{\n    return (const uint8_t*)record + " << where << ";\n}\n\n"
             << setter("void", name, index + ", const uint8_t* bytes") << "{\n    memcpy((unsigned char*)record + " << where
             << ", bytes, " << field.size << ");\n}\n";
    }

    void writeArray(const Field& array, const Structure& structure)
    {
        const std::string name = cName(array.name);
        const std::string where = std::to_string(array.offset) + " + index * " + std::to_string(array.stride);
        out_ << "\n#define " << upperCase(prefix_ + "_" + name) << "_COUNT " << array.count
             << "u /* elements that there is room for */\n";
        writeCount(array, structure, name, where);
        const std::string note = "; index from 0, below " + upperCase(prefix_ + "_" + name) + "_COUNT";
        for (const Field& field : array.elementFields)
            writeField(field, field.name.empty() ? name : name + "_" + cName(field.name),
                       where + (field.offset == 0 ? "" : " + " + std::to_string(field.offset)), ", size_t index", note);
    }

    void writeCount(const Field& array, const Structure& structure, const std::string& name, const std::string& where)
    {
        out_ << "\n/* " << explained("How many elements are in use", array.meaning) << ". */\n"
             << getter("size_t", name + "_count", "");
        if (!array.countField.empty())
            out_ << "{\n    const " << numberType(*structure.field(array.countField)) << " count = " << prefix_ << "_"
                 << cName(array.countField) << "(record);\n    return count < " << array.count
                 << " ? (size_t)count : " << array.count << ";\n}\n";
        else if (array.endsWithZero)
            out_ << "{\n    static const unsigned char zeros[" << array.stride
                 << "] = {0};\n    size_t index = 0;\n    while (index < " << array.count
                 << " && memcmp((const unsigned char*)record + " << where
                 << ", zeros, sizeof zeros) != 0)\n        ++index;\n    return index;\n}\n";
        else
            out_ << "{\n    (void)record;\n    return " << array.count << ";\n}\n";
    }

    std::ostream& out_;
    const std::string prefix_;
    const std::string type_;
};

// --- What is not in a structure ---------------------------------------------------------------------------------------------

void writeSharedValues(std::ostream& out, const ValueSet& set)
{
    const std::string name = "tarn_" + cName(set.name);
    out << "\nenum " << name << "\n{\n";
    for (const NamedValue& value : set.values)
        out << "    " << upperCase(name) << "_" << constantName(value.name) << " = " << value.value
            << (&value == &set.values.back() ? "\n" : ",\n");
    out << "};\n";
}

void collect(std::set<const ValueSet*>& sets, const Meaning& meaning)
{
    if (meaning.values != nullptr && !meaning.values->name.empty())
        sets.insert(meaning.values.get());
}

void collect(std::set<const ValueSet*>& sets, const std::vector<Field>& fields)
{
    for (const Field& field : fields)
    {
        collect(sets, field.meaning);
        collect(sets, field.elementFields);
    }
}

// Those that something uses, by their names.
std::vector<const ValueSet*> sharedValues(const Layout& layout)
{
    std::set<const ValueSet*> sets;
    for (const std::vector<Structure>* structures : {&layout.records, &layout.blocks, &layout.events})
        for (const Structure& structure : *structures)
            collect(sets, structure.fields);
    for (const auto& [place, meaning] : layout.arguments)
        collect(sets, meaning);
    std::vector<const ValueSet*> sorted(sets.begin(), sets.end());
    std::sort(sorted.begin(), sorted.end(),
              [](const ValueSet* left, const ValueSet* right) { return left->name < right->name; });
    return sorted;
}

void writeArguments(std::ostream& out, const Layout& layout)
{
    for (const auto& [place, meaning] : layout.arguments)
    {
        out << "\n/* " << inComment(place) << explained("", meaning) << " */\n";
        if (meaning.values != nullptr && meaning.values->name.empty())
            for (const NamedValue& value : meaning.values->values)
                out << "#define " << constantName(place) << "_" << constantName(value.name) << " ((uint32_t)" << value.value
                    << ")\n";
        for (const Flag& flag : meaning.flags)
            out << "#define " << constantName(place) << "_" << constantName(flag.name) << " ((uint32_t)1 << " << flag.bit
                << ")\n";
    }
}

void writeSelections(std::ostream& out, const Layout& layout)
{
    for (const Selection& selection : layout.selections)
    {
        const std::string place = selection.function + "." + selection.argument;
        out << "\n/* " << place << ": which fields of " << selection.selected << " count"
            << (selection.zeroIsAll ? "; 0 for all of them" : "") << " */\n";
        for (const Flag& field : selection.fields)
            out << "#define " << constantName(place) << "_" << constantName(field.name) << " ((uint32_t)1 << " << field.bit
                << ")\n";
    }
}

void writeStatuses(std::ostream& out, const Layout& layout)
{
    for (const contract::Contract& contract : contract::all())
    {
        out << "\n/* " << contract.service << " */\n";
        for (const Status& status : layout.statuses)
        {
            if (!status.isOf(contract.service))
                continue;
            out << "#define TARN_STATUS_" << contract.service << "_" << constantName(status.name);
            if (contract.result.isSigned)
                out << " ((int32_t)" << static_cast<std::int32_t>(status.number) << ")";
            else
                out << " ((uint32_t)" << status.number << "u)";
            out << " /* " << inComment(status.text) << " */\n";
        }
    }
}

void writeTitle(std::ostream& out, const std::string& title)
{
    out << "\n/* ==== " << title << " ==== */\n";
}

} // namespace

std::string cName(const std::string& name)
{
    std::string result;
    for (std::size_t i = 0; i < name.size(); ++i)
    {
        const bool follows = i > 0 && !result.empty() && result.back() != '_';
        const bool beginsWord =
            isUpper(name[i]) && follows && (!isUpper(name[i - 1]) || (i + 1 < name.size() && isLower(name[i + 1])));
        if (beginsWord)
            result += '_';
        result += name[i] == '.' ? '_' : static_cast<char>(std::tolower(static_cast<unsigned char>(name[i])));
    }
    return result;
}

std::string cHeader(const Layout& layout)
{
    std::ostringstream out;
    const std::string title = inComment(layout.title());
    out << "/* The inside of the records, blocks and events of one make of gateway: " << title << ".\n"
        << " *\n"
        << " * Written by `tarnctl layout header`. It is right for gateways of this make only.\n"
        << " *\n"
        << " * A field is read by RECORD_FIELD(&record) and written by RECORD_set_FIELD(&record, value), wherever the record "
           "is in\n"
        << " * memory. Numbers are in the byte order of the processor, as the library hands them over. */\n"
        << "#ifndef TARN_GATEWAY_RECORDS_H\n#define TARN_GATEWAY_RECORDS_H\n\n"
        << "#include <stddef.h>\n#include <stdint.h>\n#include <string.h>\n\n"
        << "#include \"tarn_api.h\"\n\n#ifdef __cplusplus\nextern \"C\" {\n#endif\n";
    writeTitle(out, "Values that have names");
    for (const ValueSet* set : sharedValues(layout))
        writeSharedValues(out, *set);
    writeTitle(out, "Reply statuses");
    writeStatuses(out, layout);
    writeTitle(out, "Arguments of functions");
    writeArguments(out, layout);
    writeTitle(out, "Arguments that select fields");
    writeSelections(out, layout);
    writeTitle(out, "Records");
    for (const Structure& record : layout.records)
        Accessors(out, record, record.name);
    writeTitle(out, "Blocks of bytes, which are arguments of functions");
    for (const Structure& block : layout.blocks)
        Accessors(out, block, "void");
    writeTitle(out, "Data of events: of at least as many bytes as the size says");
    for (const Structure& event : layout.events)
        Accessors(out, event, "void");
    out << "\n#ifdef __cplusplus\n}\n#endif\n\n#endif\n";
    return out.str();
}

} // namespace tarn::layout
