#include <cstdio>
#include <gio/gio.h>
#include <memory>

// framora-desktop-setting SCHEMA KEY: prints the value of a key of a settings schema, a text as it is. Exits
// with 1 when there is no such schema or key: asking for a missing one ends a program, so it is looked up
// first.

namespace {

struct Unreference {
    void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
    void operator()(GSettings* settings) const { g_object_unref(settings); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(gchar* text) const { g_free(text); }
};
template <typename T> using Owned = std::unique_ptr<T, Unreference>;

} // namespace

int main(int argc, char** argv) {
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    if (argc != 3 || !source)
        return 1;
    const Owned<GSettingsSchema> schema(g_settings_schema_source_lookup(source, argv[1], TRUE));
    // A schema without a path of its own needs to be told one.
    if (!schema || !g_settings_schema_get_path(schema.get()) ||
        !g_settings_schema_has_key(schema.get(), argv[2]))
        return 1;
    const Owned<GSettings> settings(g_settings_new_full(schema.get(), nullptr, nullptr));
    const Owned<GVariant> value(g_settings_get_value(settings.get(), argv[2]));
    if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING)) {
        std::fputs(g_variant_get_string(value.get(), nullptr), stdout);
    } else {
        const Owned<gchar> text(g_variant_print(value.get(), FALSE));
        std::fputs(text.get(), stdout);
    }
    return 0;
}
