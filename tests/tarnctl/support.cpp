#include "support.h"

#include "schema.h"
#include "tarnctl/command_line.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <unistd.h>

namespace tarnctl_test
{

namespace
{

std::string readFile(const std::string& path)
{
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

const Schema& publishedValidator()
{
    static const Schema schema(Json::parse(readFile(TARNCTL_SCHEMA)));
    return schema;
}

} // namespace

Ran run(const Words& arguments, const tarn::ctl::Terminal& terminal)
{
    std::ostringstream out;
    std::ostringstream err;
    Ran ran;
    ran.exit = tarn::ctl::run(arguments, out, err, terminal);
    ran.out = out.str();
    ran.err = err.str();
    return ran;
}

Json checkedDocument(const std::string& text)
{
    const Json document = Json::parse(text, nullptr, false);
    if (document.is_discarded())
    {
        ADD_FAILURE() << "no JSON document: " << text;
        return Json::object();
    }
    for (const std::string& violation : publishedValidator().violations(document))
        ADD_FAILURE() << violation << "\n" << text.substr(0, 2000);
    return document;
}

RanJson runJson(Words arguments)
{
    arguments.insert(arguments.begin(), "--json");
    const Ran ran = run(arguments);
    return {ran.exit, checkedDocument(ran.out), ran.err};
}

TarnctlTest::TarnctlTest()
{
    setenv("KORIIL_TRACE", "off", 1);
}

Service::Service(const char* serviceId, Answer answer, std::uint32_t eventCount)
    : answer_(std::move(answer)), service_(serviceId, eventCount, &Service::handle, this)
{
}

std::uint32_t Service::publish(std::uint32_t event, const Bytes& data)
{
    return service_.publish(event, data.data(), data.size());
}

std::vector<Seen> Service::requests() const
{
    const std::lock_guard<std::mutex> guard(mutex_);
    return seen_;
}

std::uint32_t Service::handle(void* context, const KorIilRequest* request, void* message)
{
    auto& self = *static_cast<Service*>(context);
    auto* const first = static_cast<unsigned char*>(message);
    Bytes bytes(first, first + request->length);
    {
        const std::lock_guard<std::mutex> guard(self.mutex_);
        self.seen_.push_back({request->callerId, request->command, request->wait, bytes});
    }
    const std::uint32_t status = self.answer_(*request, bytes);
    std::memcpy(message, bytes.data(), bytes.size());
    return status;
}

Answer statusAnswer(std::uint32_t status)
{
    return [status](const KorIilRequest&, Bytes& message)
    {
        putWord(message, message.size() - 4, status);
        return std::uint32_t{KOR_IIL_OK};
    };
}

Answer ipcAnswer(std::uint32_t status)
{
    return [status](const KorIilRequest&, Bytes&) { return status; };
}

void putWord(Bytes& message, std::size_t offset, std::uint32_t word)
{
    std::memcpy(&message.at(offset), &word, sizeof word);
}

std::uint32_t wordAt(const Bytes& message, std::size_t offset)
{
    std::uint32_t word = 0;
    std::memcpy(&word, &message.at(offset), sizeof word);
    return word;
}

Bytes fromHex(const std::string& text)
{
    return tarn::base::parseHex(text).value();
}

std::string shellOutput(const std::string& command)
{
    FILE* const pipe = popen(command.c_str(), "r");
    std::string text;
    std::array<char, 4096> part;
    for (std::size_t length; (length = fread(part.data(), 1, part.size(), pipe)) > 0;)
        text.append(part.data(), length);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return text;
}

Program::Program(const Words& arguments, const std::string& program)
    : process_(tarn::test::commandOf(EMULATOR, program, arguments), {STDIN_FILENO, out_.writing(), err_.writing()})
{
    out_.closeWriting();
    err_.closeWriting();
}

std::string Program::nextLine() const
{
    return out_.line();
}

std::string Program::nextErrorLine() const
{
    return err_.line();
}

void Program::signal(int number) const
{
    process_.signal(number);
}

int Program::exitCode()
{
    return process_.finish();
}

std::string validValue(const tarn::contract::Argument& argument, std::size_t seed)
{
    using tarn::contract::Type;
    switch (argument.type)
    {
    case Type::kU32:
        return std::to_string(0x01020304u + seed);
    case Type::kU16:
        return std::to_string(0x0203u + seed);
    case Type::kU8:
        return std::to_string(0x41u + seed);
    case Type::kText:
        return "text " + std::to_string(seed);
    case Type::kBytes:
    case Type::kRecord:
        break;
    }
    Bytes bytes(argument.size);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 + seed + 1);
    return hexText(bytes);
}

Words validArguments(const tarn::contract::Command& command)
{
    Words words;
    std::size_t seed = 0;
    for (const tarn::contract::Argument& argument : command.arguments)
    {
        ++seed;
        if (argument.direction == tarn::contract::Direction::kIn && argument.encoding != tarn::contract::Encoding::kSize)
            words.push_back(argument.name + "=" + validValue(argument, seed));
    }
    return words;
}

} // namespace tarnctl_test
