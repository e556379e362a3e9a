/* The wire as data, read: what each function puts into its message, what it takes out of the reply, and what it refuses.
 *
 * What the three JSON files of this directory say is compiled in, so nothing has to be found or read at run time. README.md
 * describes their keys. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::contract
{

enum class Type
{
    kU32,
    kU16,
    kU8,
    kText,
    kBytes,
    kRecord
};

enum class Direction
{
    kIn,
    kOut
};

enum class Encoding
{
    kId,
    kWord,
    kByte,
    kInverted,
    kText,
    kBlock,
    kWords,
    kRecord,
    kSize,
    kNothing
};

enum class When
{
    kNull,
    kNullOrEmpty,
    kZero
};

// What a call leaves behind on the gateway.
enum class Effect
{
    kReads, // nothing, as far as is known
    kChanges
};

struct Argument
{
    std::string name;
    Type type = Type::kU32;
    std::string record; // name of the record, for Type::kRecord only
    Direction direction = Direction::kIn;
    Encoding encoding = Encoding::kWord;
    std::uint32_t offset = 0;
    std::uint32_t size = 0;   // bytes in the message, or bytes written; 0 if there are none or sizeArgument says
    std::string sizeArgument; // name of the argument that says how many bytes the caller's buffer holds, or empty
    bool isSigned = false;    // the words may be negative, in two's complement
    bool optional = false;    // a null pointer means "leave out"

    // A number that is passed by value, as opposed to a pointer or a record.
    bool isNumber() const;
    // Everything written, every text, every run of bytes.
    bool isPointer() const;
};

struct Check
{
    std::string argument;
    When when = When::kNull;
    std::string message; // the whole text of the trace
};

struct Command
{
    std::uint32_t command = 0;
    std::string function;
    std::string group;
    std::string description;
    std::string note; // what is odd and meant so, or empty
    Effect effect = Effect::kChanges;
    std::string effectReason; // why that, where one may doubt it, or empty
    std::uint32_t wait = 0;
    std::uint32_t length = 0;
    std::vector<Argument> arguments;
    std::vector<Check> checks; // in the order in which they are made

    // Offset of the reply status, the message's last word.
    std::uint32_t statusOffset() const
    {
        return length - 4;
    }

    // The argument of that name, or null.
    const Argument* argument(std::string_view name) const;
};

struct RecordType
{
    std::string name;
    std::uint32_t size = 0;
};

struct Event
{
    std::uint32_t event = 0;
    std::string name;
};

struct Result
{
    bool isSigned = false; // int32_t instead of uint32_t
    std::int64_t rejected = 0;
    std::int64_t failed = 0;
    std::int64_t timedOut = 0;
};

struct Contract
{
    std::string service;
    std::string traceTag;
    Result result;
    std::string invalidCaller; // trace format
    std::vector<RecordType> records;
    std::vector<Event> events;
    std::vector<Command> commands;

    // The record of that name, or null.
    const RecordType* record(std::string_view name) const;
};

// One function together with the service it belongs to; both null if there is none.
struct Row
{
    const Contract* contract = nullptr;
    const Command* command = nullptr;

    explicit operator bool() const
    {
        return command != nullptr;
    }
};

// The contracts that are compiled in, in the order TARN, QTN_RPC_PROXY, QTN_MIRROR.
const std::vector<Contract>& all();

// Every function of every service, in that order.
const std::vector<Row>& rows();

// The function of exactly that name; an empty row if there is none.
Row find(std::string_view function);

// The contract of exactly that service, or null.
const Contract* findService(std::string_view service);

// Reads one contract. `fileName` is only for the text of errors. Throws base::JsonError for a text that is not JSON, for a key
// that is missing, unknown, given twice or of the wrong kind, and for everything that `problems` finds.
Contract parse(std::string_view text, const std::string& fileName);

// What does not fit together in a contract, one line a problem; empty if it is sound.
std::vector<std::string> problems(const Contract& contract);

// Bytes that an argument of this encoding always takes in the message; 0 if its size says.
std::uint32_t impliedSize(Encoding encoding);

// The words for these in the files.
const char* toString(Type type);
const char* toString(Direction direction);
const char* toString(Encoding encoding);
const char* toString(When when);
const char* toString(Effect effect);

} // namespace tarn::contract
