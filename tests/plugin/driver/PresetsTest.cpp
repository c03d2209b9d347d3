// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "foundation/module/Configuration.h"
#include "foundation/module/MModule.h"
#include "foundation/text/MException.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"
#include "plugin/driver/PluginState.h"
#include "state/tree/XML.h"
#include "tests/plugin/driver/TestEffect.h"

namespace
{
struct TestPlugin : MQuorvaneAudioEffectPlugin
{
    TestPlugin()
    {
        Initialize("Test", "Quorvane", &TestEffect::Entry, 800, 560);
        effect = TestEffect::last;
        InitProcessing();
    }
    TestEffect* effect;
};

TEST(PluginPresets, HoldTheWholeStateAndTheirPlaceInIt)
{
    TestPlugin plugin;
    MAttribute root;
    plugin.presets.LoadPresets(root);
    EXPECT_EQ(root.SubItemCount(), 0);
    for (const float value : { 2.0f, 7.0f })
    {
        plugin.effect->parameters[TestEffect::Ramp].number.value = value;
        plugin.agc = value > 5;
        plugin.presets.AddPreset(root, "Preset");
    }
    plugin.presets.StepPreset(-2);   // from 0 around the end to 0
    EXPECT_EQ(plugin.effect->parameters[TestEffect::Ramp].number.value, 2.0);
    EXPECT_EQ(plugin.agc, 0);
    plugin.presets.StepPreset(1);
    EXPECT_EQ(plugin.effect->parameters[TestEffect::Ramp].number.value, 7.0);
    EXPECT_EQ(plugin.agc, 1);

    // The preset itself says 0, which stood there when it was made: its place counts.
    EXPECT_EQ(plugin.presets.CurrentPresetIndex(), 1);
    MMemoryStream stream;
    WritePluginState(plugin, stream);
    TestPlugin other;
    stream.Seek(0, MStream::Begin);
    ReadPluginState(other, stream);
    EXPECT_EQ(other.presets.CurrentPresetIndex(), 1);
    other.presets.StepPreset(1);   // both see one file
    EXPECT_EQ(other.effect->parameters[TestEffect::Ramp].number.value, 2.0);
}

TEST(PluginPresets, DefaultSettingsMeetEveryNewInstance)
{
    StartModule();
    {
        TestPlugin plugin;
        plugin.effect->parameters[TestEffect::Plain].number.value = 0.5;
        plugin.SetDefaultSettingsToCurrent();
    }
    TestPlugin plugin;
    EXPECT_TRUE(plugin.LoadDefaultSettings());
    EXPECT_EQ(plugin.effect->parameters[TestEffect::Plain].number.value, 0.5);
    MAttribute none;
    SaveConfiguration(none);
    EXPECT_FALSE(plugin.LoadDefaultSettings());
}
}   // namespace
