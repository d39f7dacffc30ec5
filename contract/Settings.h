// The keys of the two settings files; "AppPath" stands in both.
#pragma once

namespace kelvane::settings {

// In the shared folder's settings the bundle that has the update engine; in the product's the
// installed application.
inline constexpr char kAppPath[] = "AppPath";

inline constexpr char kCatalogueName[] = "online_update_plist_name";
inline constexpr char kProductIdSw[] = "product_id_sw";
inline constexpr char kProductIdKorfw[] = "product_id_korfw";
inline constexpr char kProductIdZentanfw[] = "product_id_zentanfw";
inline constexpr char kProductIdTarsel2fw[] = "product_id_tarsel2fw";
inline constexpr char kProductIdTarsel3fw[] = "product_id_tarsel3fw";
inline constexpr char kAppName[] = "app_name";

inline constexpr const char* kProductKeys[] = {
    kAppPath,           kCatalogueName,      kProductIdSw,        kProductIdKorfw,
    kProductIdZentanfw, kProductIdTarsel2fw, kProductIdTarsel3fw, kAppName};

}  // namespace kelvane::settings
