#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

/// The lidars that were connected last, and the model that was chosen last, kept in the settings
/// file across starts. What the file holds beside well-formed entries is passed over. GUI thread
/// only.
class RecentLidars : public QObject {
  Q_OBJECT
  /// The latest first, at most eight. Maps of texts: "model", "address" (on the network, or the
  /// serial port), "port" (on the network, or the second serial port, or empty), "number" (the
  /// serial number, or empty) and "label", all of it in one line.
  Q_PROPERTY(QVariantList entries READ entries NOTIFY changed)
  /// Empty when none was chosen yet.
  Q_PROPERTY(QString lastModel READ last_model WRITE SetLastModel NOTIFY changed)

 public:
  explicit RecentLidars(QObject* parent = nullptr);

  const QVariantList& entries() const { return entries_; }
  const QString& last_model() const { return last_model_; }
  void SetLastModel(const QString& model);

  /// Puts a connected lidar first. Without its number it is the one that was there before.
  Q_INVOKABLE void Note(const QString& model, const QString& address, const QString& port,
                        const QString& number);

 signals:
  void changed();

 private:
  QVariantList entries_;
  QString last_model_;
};
