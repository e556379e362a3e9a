// What tests of services have in common: an empty runtime directory, and a service in a thread of the test's process.
#pragma once

#include "kor_iil.h"
#include "kor_iil_service.h"
#include "temporary_directory.h"

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace tarn::test
{

// Found through KORIIL_DIR while it exists; then the one before is again.
class TemporaryRuntimeDirectory : public TemporaryDirectory
{
public:
    TemporaryRuntimeDirectory()
    {
        if (const char* const before = std::getenv("KORIIL_DIR"))
            before_ = before;
        setenv("KORIIL_DIR", path().c_str(), 1);
    }

    ~TemporaryRuntimeDirectory()
    {
        if (before_)
            setenv("KORIIL_DIR", before_->c_str(), 1);
        else
            unsetenv("KORIIL_DIR");
    }

    TemporaryRuntimeDirectory(const TemporaryRuntimeDirectory&) = delete;
    TemporaryRuntimeDirectory& operator=(const TemporaryRuntimeDirectory&) = delete;

private:
    std::optional<std::string> before_;
};

// Runs until it is destroyed.
class ServiceThread
{
public:
    ServiceThread(const char* serviceId, std::uint32_t eventCount, KorIilRequestHandler handler, void* context)
    {
        const std::uint32_t status = KorIilServiceOpen(serviceId, eventCount, handler, context, &service_);
        if (status != KOR_IIL_OK)
            throw std::runtime_error("the service cannot be opened: status " + std::to_string(status));
        thread_ = std::thread([this] { EXPECT_EQ(KorIilServiceRun(service_), KOR_IIL_OK); });
    }

    ~ServiceThread()
    {
        KorIilServiceStop(service_);
        thread_.join();
        KorIilServiceClose(service_);
    }

    ServiceThread(const ServiceThread&) = delete;
    ServiceThread& operator=(const ServiceThread&) = delete;

    KorIilService* get() const
    {
        return service_;
    }

    // Returns how many processes the event was sent to.
    std::uint32_t publish(std::uint32_t event, const void* data, std::size_t length)
    {
        std::uint32_t subscribers = 0;
        EXPECT_EQ(KorIilServicePublish(service_, event, data, static_cast<std::uint32_t>(length), &subscribers), KOR_IIL_OK);
        return subscribers;
    }

private:
    KorIilService* service_ = nullptr;
    std::thread thread_;
};

} // namespace tarn::test
