// SPDX-License-Identifier: MIT
#include "widget/class_ids.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <set>

#include "standalone/wing_table.h"
#include "widget/model_rows.h"

using TestSupport::GetModelRows;
using TestSupport::ModelRow;

namespace
{

TEST(ClassIds, EachIsAnObjectOfItsOwn)
{
    std::set<const GUID*> objects;
    for (const ModelRow& row : GetModelRows())
        objects.insert(row.classId);
    EXPECT_EQ(objects.size(), 15u);
}

TEST(ClassIds, EachKnowsItsName)
{
    for (const ModelRow& row : GetModelRows())
        EXPECT_STREQ(row.classId->name, row.identifier);
}

TEST(ClassIds, EachKnowsItsPlace)
{
    for (std::size_t place = 0; place < GetModelRows().size(); ++place)
        EXPECT_EQ(GetModelRows()[place].classId->position, place);
}

TEST(ClassIds, ThePlatformAndTheProgramSeeTheSameObjects)
{
    for (const ModelRow& row : GetModelRows())
        EXPECT_EQ(Standalone::FindWingModel(row.name)->classId, row.classId) << row.name;
}

TEST(ClassIds, ALibraryThatIsLoadedLaterSeesTheSameObjects)
{
    void* const library = dlopen(WIDGET_CLASS_PROBE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    void* const symbol = dlsym(library, "GetProbedClasses");
    ASSERT_NE(symbol, nullptr);
    const GUID* const* const classes = reinterpret_cast<const GUID* const* (*)()>(symbol)();
    for (std::size_t place = 0; place < GetModelRows().size(); ++place)
        EXPECT_EQ(classes[place], GetModelRows()[place].classId) << place;
}

} // namespace
