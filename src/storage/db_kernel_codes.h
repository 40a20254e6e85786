#pragma once

// Result codes of the database kernel. They are returned by the iDK_ operations and
// carried in EDbKernelException; TDBErrorTranslate holds their German texts.
namespace korvan::storage {

inline constexpr int kDkInvalidHandle = 4288;
inline constexpr int kDkUnknownTask = 4289;
inline constexpr int kDkAlreadyOpen = 4290;
inline constexpr int kDkDuplicateKey = 4291;
inline constexpr int kDkNoLockingForType = 4292;
inline constexpr int kDkWrongVersion = 4300;
inline constexpr int kDkParentMissing = 4301;
inline constexpr int kDkBadRecordLength = 4302;
inline constexpr int kDkFormatVesko53 = 4303;
inline constexpr int kDkDataFileExists = 4304;
inline constexpr int kDkTooManyHandles = 4305;
inline constexpr int kDkTooManyTasks = 4306;
inline constexpr int kDkDataFileMissing = 4307;
inline constexpr int kDkKeyFileMissing = 4308;
inline constexpr int kDkNotADatabaseFile = 4309;
inline constexpr int kDkNoCopyright = 4310;
inline constexpr int kDkFormatVesko50 = 4311;
inline constexpr int kDkFormatVesko52 = 4312;
inline constexpr int kDkCannotReplace = 4313;
inline constexpr int kDkKeyNotFound = 4314;
inline constexpr int kDkCacheTooSmall = 4315;
inline constexpr int kDkStaysOpen = 4316;
inline constexpr int kDkRecordLocked = 4317;
inline constexpr int kDkMediumReadOnly = 4318;
inline constexpr int kDkSharingViolation = 4319;
inline constexpr int kDkIoError = 4320;
inline constexpr int kDkDataFileInitFailed = 4321;
inline constexpr int kDkKeyFileInitFailed = 4322;
inline constexpr int kDkLockFileInitFailed = 4323;
inline constexpr int kDkRecordMissing = 4324;
inline constexpr int kDkFatalRegenerateOk = 4325;
inline constexpr int kDkFatalRegenerateMaybe = 4326;
inline constexpr int kDkFormatVesko60 = 4331;
inline constexpr int kDkOpenedByOtherWriter = 4332;
inline constexpr int kDkKeyFileVeryLarge = 4336;
inline constexpr int kDkRecordChanged = 4337;
inline constexpr int kDkFormatOstrell20 = 4338;
inline constexpr int kDkFormat2011 = 4340;
inline constexpr int kDkFormat2013 = 4341;
inline constexpr int kDkFormat2014 = 4342;
inline constexpr int kDkFormat2016 = 4343;
inline constexpr int kDkFormat2018 = 4344;
inline constexpr int kDkFormatCurrent = 4345;
inline constexpr int kDkBadPosition = 4352;
inline constexpr int kDkFileTooShort = 4353;
inline constexpr int kDkRecordDeleted = 4354;
inline constexpr int kDkInvalidRecordLength = 4355;
inline constexpr int kDkRecordBeyondEnd = 4356;
inline constexpr int kDkFileWouldExceed2GB = 4357;
inline constexpr int kDkConcurrencyConflict = 4358;

// Codes of the database registry and the table layer that share the message table.
inline constexpr int kDbUnknownType = 5888;
inline constexpr int kDbInvalidFileName = 5889;
inline constexpr int kDbTypeRegistrationFailed = 5890;
inline constexpr int kDbNoRecordFound = 5904;
inline constexpr int kDbConfigFileMissing = 5905;
inline constexpr int kDbAlreadyExists = 5906;
inline constexpr int kDbNotFound = 5907;

}  // namespace korvan::storage
