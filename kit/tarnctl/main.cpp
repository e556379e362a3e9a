#include "command_line.h"

#include <iostream>

int main(int argc, char** argv)
{
    return tarn::ctl::run(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr,
                          tarn::ctl::terminalOfProcess());
}
