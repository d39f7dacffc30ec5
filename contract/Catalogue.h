// The update catalogue, a property list that the update engine leaves in a job's folder; and the
// packages that have a name of their own.
#pragma once

namespace kelvane::catalogue {

inline constexpr char kRules[] = "Rules";

// Of a rule. A query's output shows rules as they are.
inline constexpr char kProductId[] = "ProductID";
inline constexpr char kVersion[] = "Version";
inline constexpr char kSize[] = "Size";
inline constexpr char kHash[] = "Hash256";
inline constexpr char kMinimumOs[] = "MinimumOSVersion";
inline constexpr char kCodebase[] = "Codebase";

// The USB bridge's product, which is in no setting.
inline constexpr char kUsbBridgeProduct[] = "tarselT3USBFW";

// The files in which firmware arrives, of the settings' tarsel2 product, and of its tarsel3 product
// and the USB bridge.
inline constexpr char kTarsel2Image[] = "FW_QRX550.img";
inline constexpr char kTarsel3Image[] = "FW_T3.img";

}  // namespace kelvane::catalogue
