#include "envelope.h"

#include <cstring>
#include <initializer_list>

namespace tarn::fleet
{

namespace
{

enum class Presence : std::uint8_t
{
    kNever,
    kAlways,
    kMaybe
};

// Which fields a kind has, in the order in which they are checked. A number is there if it is not 0.
struct Fields
{
    Presence byteOrder, refusal, session, sequence, run, clock, live, command, wait, status, contract, length, operatorId,
        service;
};

constexpr Presence kNever = Presence::kNever;
constexpr Presence kAlways = Presence::kAlways;
constexpr Presence kMaybe = Presence::kMaybe;

// By kind, less one. A command may have the number 0.
constexpr Fields kFields[] = {
    // order refusal   session  sequence run      clock   live     command  wait     status  contract length   operator service
    {kAlways, kNever, kAlways, kAlways, kMaybe, kMaybe, kAlways, kMaybe, kAlways, kNever, kAlways, kAlways, kAlways, kAlways},
    {kAlways, kMaybe, kAlways, kAlways, kAlways, kMaybe, kNever, kMaybe, kNever, kMaybe, kAlways, kMaybe, kNever, kAlways},
    {kAlways, kNever, kNever, kAlways, kAlways, kMaybe, kNever, kAlways, kNever, kNever, kAlways, kMaybe, kNever, kAlways},
    {kAlways, kNever, kNever, kAlways, kAlways, kMaybe, kNever, kNever, kNever, kNever, kAlways, kAlways, kNever, kNever},
    {kAlways, kNever, kNever, kAlways, kAlways, kMaybe, kNever, kNever, kNever, kNever, kAlways, kNever, kNever, kNever},
    {kNever, kNever, kAlways, kAlways, kNever, kNever, kNever, kNever, kNever, kNever, kNever, kNever, kAlways, kNever},
    {kAlways, kNever, kAlways, kAlways, kAlways, kMaybe, kNever, kNever, kNever, kNever, kAlways, kAlways, kNever, kNever},
};

constexpr std::uint8_t kLastKind = static_cast<std::uint8_t>(Kind::kPong);
static_assert(sizeof kFields / sizeof kFields[0] == kLastKind, "a row for each kind");

bool fits(Presence presence, bool isThere)
{
    return presence == kMaybe || (presence == kAlways) == isThere;
}

// Fields that have to agree with one another.
Fault checkTogether(const Envelope& envelope)
{
    if (envelope.kind == Kind::kRequest && envelope.run == 0 && envelope.clock != 0)
        return Fault::kClock;
    if (envelope.refusal != Refusal::kNone && envelope.status == 0)
        return Fault::kStatus;
    if (envelope.kind == Kind::kReply && (envelope.status == 0) != (envelope.length != 0))
        return Fault::kLength;
    return Fault::kNone;
}

Fault checkLimits(const Envelope& envelope)
{
    if (envelope.byteOrder > ByteOrder::kLittle)
        return Fault::kByteOrder;
    if (static_cast<std::uint8_t>(envelope.refusal) > kLastRefusal)
        return Fault::kRefusal;
    if (envelope.live > kLongestLife)
        return Fault::kLive;
    if (envelope.length > kLongestMessage)
        return Fault::kLength;
    if (envelope.present > envelope.length)
        return Fault::kPresent;
    if (envelope.operatorId[0] != '\0' && !isId(envelope.operatorId))
        return Fault::kOperator;
    if (envelope.service[0] != '\0' && !isService(envelope.service))
        return Fault::kService;
    return Fault::kNone;
}

Fault checkProgramVersion(const Envelope& envelope)
{
    if (envelope.kind != Kind::kBirth && envelope.kind != Kind::kPong)
        return Fault::kNone;
    if (envelope.length > kLongestProgramVersion || envelope.present != envelope.length)
        return Fault::kProgramVersion;
    const char* text = static_cast<const char*>(envelope.message);
    for (std::uint32_t at = 0; at < envelope.present; ++at)
        if (text[at] <= ' ' || text[at] >= 0x7F)
            return Fault::kProgramVersion;
    return Fault::kNone;
}

// Writes numbers with the most significant byte first.
class Writer
{
public:
    explicit Writer(void* bytes) : next_(static_cast<std::uint8_t*>(bytes))
    {
    }
    template <typename Number>
    void number(Number value)
    {
        for (std::size_t left = sizeof value; left-- > 0;)
            *next_++ = static_cast<std::uint8_t>(value >> (8 * left));
    }
    void bytes(const void* from, std::size_t size)
    {
        if (size > 0)
            std::memcpy(next_, from, size);
        next_ += size;
    }

private:
    std::uint8_t* next_;
};

class Reader
{
public:
    explicit Reader(const void* bytes) : next_(static_cast<const std::uint8_t*>(bytes))
    {
    }
    template <typename Number>
    void number(Number& value)
    {
        value = 0;
        for (std::size_t left = sizeof value; left > 0; --left)
            value = static_cast<Number>((static_cast<std::uint64_t>(value) << 8) | *next_++);
    }
    void text(char* to, std::size_t size)
    {
        std::memcpy(to, next_, size);
        next_ += size;
    }
    const std::uint8_t* rest() const
    {
        return next_;
    }

private:
    const std::uint8_t* next_;
};

// Bytes that are left without the zeros at the end.
std::uint32_t withoutTrailingZeros(const void* message, std::uint32_t present)
{
    const auto* bytes = static_cast<const std::uint8_t*>(message);
    while (present > 0 && bytes[present - 1] == 0)
        --present;
    return present;
}

// A name that holds a NUL is shorter than its length says.
bool isWhole(const char* name, std::uint8_t length)
{
    return std::strlen(name) == length;
}

} // namespace

Fault check(const Envelope& envelope)
{
    const auto kind = static_cast<std::uint8_t>(envelope.kind);
    if (kind == 0 || kind > kLastKind)
        return Fault::kKind;
    const Fields& fields = kFields[kind - 1];
    const struct
    {
        Presence presence;
        bool isThere;
        Fault fault;
    } rules[] = {
        {fields.byteOrder, envelope.byteOrder != ByteOrder::kNone, Fault::kByteOrder},
        {fields.refusal, envelope.refusal != Refusal::kNone, Fault::kRefusal},
        {fields.session, envelope.session != 0, Fault::kSession},
        {fields.sequence, envelope.sequence != 0, Fault::kSequence},
        {fields.run, envelope.run != 0, Fault::kRun},
        {fields.clock, envelope.clock != 0, Fault::kClock},
        {fields.live, envelope.live != 0, Fault::kLive},
        {fields.command, envelope.command != 0, Fault::kCommand},
        {fields.wait, envelope.wait != 0, Fault::kWait},
        {fields.status, envelope.status != 0, Fault::kStatus},
        {fields.contract, envelope.contract != 0, Fault::kContract},
        {fields.length, envelope.length != 0, Fault::kLength},
        {fields.operatorId, envelope.operatorId[0] != '\0', Fault::kOperator},
        {fields.service, envelope.service[0] != '\0', Fault::kService},
    };
    for (const auto& rule : rules)
        if (!fits(rule.presence, rule.isThere))
            return rule.fault;
    for (const auto& verify : {checkLimits, checkTogether, checkProgramVersion})
        if (const Fault fault = verify(envelope); fault != Fault::kNone)
            return fault;
    return Fault::kNone;
}

Fault encode(const Envelope& envelope, void* bytes, std::size_t room, std::size_t& size)
{
    if (const Fault fault = check(envelope); fault != Fault::kNone)
        return fault;
    const std::size_t operatorLength = std::strlen(envelope.operatorId);
    const std::size_t serviceLength = std::strlen(envelope.service);
    const std::uint32_t present = withoutTrailingZeros(envelope.message, envelope.present);
    const std::size_t needed = kHeaderSize + operatorLength + serviceLength + present;
    if (room < needed)
        return Fault::kNoRoom;

    Writer writer(bytes);
    writer.number(kEnvelopeVersion);
    writer.number(static_cast<std::uint8_t>(envelope.kind));
    writer.number(static_cast<std::uint8_t>(envelope.byteOrder));
    writer.number(static_cast<std::uint8_t>(envelope.refusal));
    writer.number(envelope.session);
    writer.number(envelope.sequence);
    writer.number(envelope.run);
    writer.number(envelope.clock);
    writer.number(envelope.live);
    writer.number(envelope.command);
    writer.number(envelope.wait);
    writer.number(envelope.status);
    writer.number(envelope.contract);
    writer.number(envelope.length);
    writer.number(present);
    writer.number(static_cast<std::uint8_t>(operatorLength));
    writer.number(static_cast<std::uint8_t>(serviceLength));
    writer.bytes(envelope.operatorId, operatorLength);
    writer.bytes(envelope.service, serviceLength);
    writer.bytes(envelope.message, present);
    size = needed;
    return Fault::kNone;
}

Fault decode(const void* bytes, std::size_t size, Envelope& envelope)
{
    if (size > 0 && *static_cast<const std::uint8_t*>(bytes) != kEnvelopeVersion)
        return Fault::kVersion;
    if (size < kHeaderSize)
        return Fault::kTruncated;
    Envelope read;
    std::uint8_t version = 0, kind = 0, byteOrder = 0, refusal = 0, operatorLength = 0, serviceLength = 0;
    Reader reader(bytes);
    reader.number(version);
    reader.number(kind);
    reader.number(byteOrder);
    reader.number(refusal);
    reader.number(read.session);
    reader.number(read.sequence);
    reader.number(read.run);
    reader.number(read.clock);
    reader.number(read.live);
    reader.number(read.command);
    reader.number(read.wait);
    reader.number(read.status);
    reader.number(read.contract);
    reader.number(read.length);
    reader.number(read.present);
    reader.number(operatorLength);
    reader.number(serviceLength);
    read.kind = static_cast<Kind>(kind);
    read.byteOrder = static_cast<ByteOrder>(byteOrder);
    read.refusal = static_cast<Refusal>(refusal);
    if (operatorLength >= kIdSize)
        return Fault::kOperator;
    if (serviceLength >= kServiceSize)
        return Fault::kService;
    const std::size_t head = kHeaderSize + operatorLength + serviceLength;
    if (size < head)
        return Fault::kTruncated;
    reader.text(read.operatorId, operatorLength);
    reader.text(read.service, serviceLength);
    if (!isWhole(read.operatorId, operatorLength))
        return Fault::kOperator;
    if (!isWhole(read.service, serviceLength))
        return Fault::kService;
    if (size - head != read.present)
        return size - head < read.present ? Fault::kTruncated : Fault::kOversize;
    read.message = read.present > 0 ? reader.rest() : nullptr;
    if (const Fault fault = check(read); fault != Fault::kNone)
        return fault;
    if (withoutTrailingZeros(read.message, read.present) != read.present)
        return Fault::kTrailingZeros;
    envelope = read;
    return Fault::kNone;
}

void unpack(const Envelope& envelope, void* message)
{
    auto* bytes = static_cast<std::uint8_t*>(message);
    if (envelope.present > 0)
        std::memcpy(bytes, envelope.message, envelope.present);
    if (envelope.length > envelope.present)
        std::memset(bytes + envelope.present, 0, envelope.length - envelope.present);
}

const char* describe(Fault fault)
{
    switch (fault)
    {
    case Fault::kNone:
        return "an envelope";
    case Fault::kTruncated:
        return "it ends too early: expected a header of 66 bytes, and names and a message of the lengths that it has";
    case Fault::kOversize:
        return "it goes on behind its message";
    case Fault::kVersion:
        return "version: expected 1";
    case Fault::kKind:
        return "kind: expected 1 to 7";
    case Fault::kByteOrder:
        return "byte order: expected 1 (big-endian) or 2 (little-endian), and 0 in a ping";
    case Fault::kRefusal:
        return "refusal: expected 0 to 10 in a reply, else 0";
    case Fault::kSession:
        return "session: expected a number other than 0 in requests, replies, pings and pongs, else 0";
    case Fault::kSequence:
        return "sequence: expected a number other than 0";
    case Fault::kRun:
        return "run: expected a number other than 0 in what a gateway sends, 0 in a ping";
    case Fault::kClock:
        return "clock: expected 0 in a ping and in a request that names no run";
    case Fault::kLive:
        return "time to live: expected 1 to 86400000 ms in requests, else 0";
    case Fault::kCommand:
        return "command: expected the number of a command in requests and replies, 1 or more in events, else 0";
    case Fault::kWait:
        return "wait: expected a number other than 0 in requests, else 0";
    case Fault::kStatus:
        return "status: expected a status in replies, and not 0 if they refuse; else 0";
    case Fault::kContract:
        return "contract: expected a hash, and 0 in a ping";
    case Fault::kLength:
        return "length: expected 1 to 16384 in requests and in replies of status 0, at most that in events";
    case Fault::kPresent:
        return "present: expected at most the message's length";
    case Fault::kOperator:
        return "operator: expected 1 to 64 printable characters without space / + # in requests and pings, else none";
    case Fault::kService:
        return "service: expected 1 to 31 characters A-Z a-z 0-9 _ - . in requests, replies and events, else none";
    case Fault::kTrailingZeros:
        return "the message ends in zeros, which are left out";
    case Fault::kProgramVersion:
        return "program's version: expected 1 to 31 printable characters without space in births and pongs";
    case Fault::kNoRoom:
        return "it does not fit into the buffer";
    }
    return "unknown fault";
}

const char* describe(Refusal refusal)
{
    switch (refusal)
    {
    case Refusal::kNone:
        return "not refused";
    case Refusal::kPolicy:
        return "the gateway's policy does not allow it";
    case Refusal::kRate:
        return "the gateway's policy allows no more calls at present";
    case Refusal::kBusy:
        return "the gateway has too many calls waiting";
    case Refusal::kLate:
        return "it arrived or had its turn after its time to live";
    case Refusal::kOtherRun:
        return "it was meant for the bridge before a restart";
    case Refusal::kNoRun:
        return "a call that changes something has to name the bridge's run";
    case Refusal::kOtherContract:
        return "the gateway has another contract";
    case Refusal::kOtherByteOrder:
        return "the message is not in the gateway's byte order";
    case Refusal::kLength:
        return "the message has another length than the command's";
    case Refusal::kStopping:
        return "the bridge is about to end";
    }
    return "unknown refusal";
}

} // namespace tarn::fleet
