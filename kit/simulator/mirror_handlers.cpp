// Telnet of the Wi-Fi module, as the mirror service switches it.
#include "handlers.h"

namespace tarn::simulator
{

void addMirrorHandlers(HandlerTable& table)
{
    table.add({
        {"tarn_qtn_mirror_get_telnet_status",
         [](Model& model, CommandRequest& request)
         {
             request.setNumber("ref_cnt", count(model.module.telnetHolders));
             request.setNumber("status", model.module.telnetHolders.empty() ? 0 : 1);
         }},
        // A process counts once, however often it asks.
        {"tarn_qtn_mirror_set_telnet_enable",
         [](Model& model, CommandRequest& request)
         {
             std::set<std::uint32_t>& holders = model.module.telnetHolders;
             const std::uint32_t process = request.number("pid");
             const bool isEnabled = request.flag("enable");
             if (process == 0)
                 throw Refused{ReplyStatus::kInvalidValue, "process 0; expected the id of a process"};
             if (isEnabled)
             {
                 requireRoom(holders, process);
                 holders.insert(process);
             }
             else if (holders.erase(process) == 0)
             {
                 throw Refused{ReplyStatus::kNotThere, "process " + std::to_string(process) + " has not switched telnet on"};
             }
         }},
    });
}

} // namespace tarn::simulator
