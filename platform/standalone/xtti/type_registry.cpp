// SPDX-License-Identifier: MIT
#include <map>
#include <mutex>
#include <string_view>

#include "os/log.h"
#include "xtti/type_reg.h"

namespace xtti
{

namespace
{

constexpr char SourceFile[] = "xtti/type_registry.cpp";

Os::Log::Context& TypeLogContext()
{
    // Never destroyed: registrations sign off while the process exits.
    static Os::Log::Context& context =
        *new Os::Log::Context("Types", nullptr, Os::Log::AllButTrace);
    return context;
}

struct Registry {
    std::mutex mutex;
    std::map<unsigned, const type_reg*> types; // guarded by mutex

    /// Made by the first registration and never destroyed, so it outlives them all.
    static Registry& Get()
    {
        static Registry& registry = *new Registry;
        return registry;
    }
};

} // namespace

type_reg::type_reg(unsigned typeCode, const char* typeName, std::size_t typeSize,
                   const enum_desc& description, save_handler saveHandler, load_handler loadHandler,
                   save_text_handler saveTextHandler, load_text_handler loadTextHandler,
                   pctor_handler pctorHandler, pdtor_handler pdtorHandler, ctor_handler ctorHandler,
                   dtor_handler dtorHandler, cpyctor_handler cpyctorHandler, ass_handler assHandler,
                   pcpyctor_handler pcpyctorHandler, compare_handler compareHandler,
                   to_text_handler toTextHandler, from_text_handler fromTextHandler)
    : code(typeCode), name(typeName), size(typeSize), descriptor(description), save(saveHandler),
      load(loadHandler), save_text(saveTextHandler), load_text(loadTextHandler),
      pctor(pctorHandler), pdtor(pdtorHandler), ctor(ctorHandler), dtor(dtorHandler),
      cpyctor(cpyctorHandler), ass(assHandler), pcpyctor(pcpyctorHandler), compare(compareHandler),
      to_text(toTextHandler), from_text(fromTextHandler)
{
    Registry& registry = Registry::Get();
    bool inserted = false;
    {
        const std::lock_guard hold(registry.mutex);
        inserted = registry.types.emplace(code, this).second;
    }
    if (!inserted)
        OS_LOG(TypeLogContext(), Os::Log::Error, SourceFile,
               "Type code " << code << " of " << name << " is taken");
}

type_reg::~type_reg()
{
    Registry& registry = Registry::Get();
    const std::lock_guard hold(registry.mutex);
    const auto entry = registry.types.find(code);
    if (entry != registry.types.end() && entry->second == this)
        registry.types.erase(entry);
}

const type_reg* find(unsigned code)
{
    Registry& registry = Registry::Get();
    const std::lock_guard hold(registry.mutex);
    const auto entry = registry.types.find(code);
    return entry == registry.types.end() ? nullptr : entry->second;
}

const type_reg* find(const char* name)
{
    for (const type_reg* const type : registered_types())
        if (std::string_view(type->name) == name)
            return type;
    return nullptr;
}

std::vector<const type_reg*> registered_types()
{
    Registry& registry = Registry::Get();
    const std::lock_guard hold(registry.mutex);
    std::vector<const type_reg*> list;
    for (const auto& [code, type] : registry.types)
        list.push_back(type);
    return list;
}

} // namespace xtti
