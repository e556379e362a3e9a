// `tarnctl completion bash`: what a shell needs to complete command lines.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace tarn::ctl
{

// A script for bash to source: commands and options as `app` has them, functions, arguments and events as the contract does.
std::string bashCompletion(const CLI::App& app);

} // namespace tarn::ctl
