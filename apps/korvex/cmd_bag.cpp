// korvex bag FORM.json: loads a form the way a running application does (every control restored
// from its bag) and prints what each control writes when saved, by control name.

#include <cstdio>
#include <string>

#include "commands.hpp"
#include "host/json_codec.hpp"
#include "session.hpp"

namespace korvex::cli {

int RunBag(Args args) {
    if (args.size() != 1) {
        std::fprintf(stderr, "usage: korvex bag FORM.json\n");
        return kExitUsage;
    }
    Session session;
    session.OpenFile(std::string(args[0]));

    host::json::Json out = host::json::Json::object();
    // Appended, not looked up: names are unique, and the ordered object searches its keys one by
    // one, which would make a form of many controls quadratic here.
    auto& entries = out.get_ref<host::json::Json::object_t&>();
    for (host::Site* site : session.form.Sites())
        entries.emplace_back(site->Name(), host::json::EncodeBag(session.form.SaveBag(*site)));
    std::printf("%s\n", out.dump(2).c_str());
    return kExitOk;
}

}  // namespace korvex::cli
