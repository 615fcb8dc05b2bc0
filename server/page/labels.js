// The page's own words. Event texts come from the server in the operator's locale.
const words = {
  en: {
    title: "Alarms and messages", targets: "Target systems", language: "Language",
    overview: "Overview", unconfirmed: "unconfirmed", active: "active", cleared: "cleared",
    all: "all events", target: "Target", kind: "Kind", state: "State", text: "Text",
    severity: "Severity from", anyTarget: "all", anyKind: "all", anyState: "all",
    alarms: "alarms", messages: "messages", reset: "Reset", raised: "Raised", event: "Event",
    clearedAt: "Cleared", confirmedAt: "Confirmed", confirm: "Confirm", newer: "Newer",
    older: "Older", close: "Close", empty: "No events match the filter.",
    severity0: "verbose", severity1: "info", severity2: "warning", severity3: "error",
    severity4: "critical", message: "message", isActive: "active", isCleared: "cleared", ended: "ended", unknown: "never cleared",
    activeUnconfirmed: "active, unconfirmed", clearedUnconfirmed: "cleared, unconfirmed",
    connected: "live", reconnecting: "connection lost", connecting: "connecting",
    silent: "no sign of life",
    silence: "No sign of life from the server since {0}. What is shown may be out of date.",
    targetsGood: "{0} connected", targetSince: "{0} {1} since {2}", target_lost: "lost",
    target_connecting: "connecting", target_importing: "importing", target_disabled: "disabled",
    lastKnown: "last known {0}", hasLeft: "not in this view any more", waiting: "{0} new",
    moved: "new order", tryAgain: "Try again", confirmation: "Confirmation",
    confirmation_requested: "asked for by {0}, {1}",
    confirmation_accepted: "taken by the controller, {0}, {1}",
    confirmation_confirmed: "confirmed for {0}, {1}",
    confirmation_failed: "failed, {0}, {1}", confirmation_unanswered: "no answer, {0}, {1}",
    raisedAgain: "The alarm has been raised again. Nothing was confirmed.",
    gap: "gap", gapTitle: "Events may be missing from {0} to {1}: {2}", gapLasts: "now",
    gapLost: "{0} lost", gap_disconnected: "not connected", gap_forgotten: "the store is full",
    gap_database_changed: "the logger's database has changed", gap_rejected: "not readable",
    range: "{0}–{1} of {2}", confirmFailed: "The alarm could not be confirmed",
    loadFailed: "The list could not be loaded", none: "none (no texts)",
    received: "Received", severityName: "Severity", class: "Class", source: "Source",
    causes: "Causes and remedies", details: "Details", parameters: "Parameters", name: "Name",
    id: "Number",
  },
  de: {
    title: "Alarme und Meldungen", targets: "Zielsysteme", language: "Sprache",
    overview: "Übersicht", unconfirmed: "unquittiert", active: "aktiv", cleared: "gegangen",
    all: "alle Ereignisse", target: "Zielsystem", kind: "Art", state: "Zustand", text: "Text",
    severity: "Schwere ab", anyTarget: "alle", anyKind: "alle", anyState: "alle",
    alarms: "Alarme", messages: "Meldungen", reset: "Zurücksetzen", raised: "Gekommen",
    event: "Ereignis", clearedAt: "Gegangen", confirmedAt: "Quittiert", confirm: "Quittieren",
    newer: "Neuere", older: "Ältere", close: "Schließen",
    empty: "Kein Ereignis entspricht dem Filter.",
    severity0: "ausführlich", severity1: "Information", severity2: "Warnung",
    severity3: "Fehler", severity4: "kritisch", message: "Meldung", isActive: "aktiv", isCleared: "gegangen", ended: "beendet",
    unknown: "nie gegangen", activeUnconfirmed: "aktiv, unquittiert",
    clearedUnconfirmed: "gegangen, unquittiert", connected: "live",
    reconnecting: "Verbindung verloren", connecting: "verbindet",
    silent: "kein Lebenszeichen",
    silence: "Kein Lebenszeichen vom Server seit {0}. Was hier steht, kann überholt sein.",
    targetsGood: "{0} verbunden", targetSince: "{0} {1} seit {2}", target_lost: "verloren",
    target_connecting: "verbindet", target_importing: "wird eingelesen",
    target_disabled: "abgeschaltet", lastKnown: "zuletzt bekannt {0}",
    hasLeft: "nicht mehr in dieser Ansicht", waiting: "{0} neu", moved: "neue Reihenfolge",
    tryAgain: "Nochmals", confirmation: "Quittierung",
    confirmation_requested: "angefordert von {0}, {1}",
    confirmation_accepted: "von der Steuerung angenommen, {0}, {1}",
    confirmation_confirmed: "quittiert für {0}, {1}",
    confirmation_failed: "fehlgeschlagen, {0}, {1}",
    confirmation_unanswered: "keine Antwort, {0}, {1}",
    raisedAgain: "Der Alarm ist erneut gekommen. Nichts wurde quittiert.",
    gap: "Lücke", gapTitle: "Von {0} bis {1} können Ereignisse fehlen: {2}", gapLasts: "jetzt",
    gapLost: "{0} verloren", gap_disconnected: "nicht verbunden",
    gap_forgotten: "der Speicher ist voll",
    gap_database_changed: "die Datenbank des Loggers hat gewechselt",
    gap_rejected: "nicht lesbar", range: "{0}–{1} von {2}",
    confirmFailed: "Der Alarm konnte nicht quittiert werden",
    loadFailed: "Die Liste konnte nicht geladen werden", none: "keine (ohne Texte)",
    received: "Empfangen", severityName: "Schwere", class: "Klasse", source: "Quelle",
    causes: "Ursachen und Abhilfe", details: "Einzelheiten", parameters: "Parameter",
    name: "Name", id: "Nummer",
  },
  ru: {
    title: "Тревоги и сообщения", targets: "Целевые системы", language: "Язык",
    overview: "Обзор", unconfirmed: "не подтверждены", active: "активны", cleared: "сняты",
    all: "все события", target: "Система", kind: "Вид", state: "Состояние", text: "Текст",
    severity: "Важность от", anyTarget: "все", anyKind: "все", anyState: "все",
    alarms: "тревоги", messages: "сообщения", reset: "Сбросить", raised: "Возникло",
    event: "Событие", clearedAt: "Снято", confirmedAt: "Подтверждено",
    confirm: "Подтвердить", newer: "Новее", older: "Старее", close: "Закрыть",
    empty: "Нет событий, соответствующих фильтру.",
    severity0: "подробно", severity1: "информация", severity2: "предупреждение",
    severity3: "ошибка", severity4: "критично", message: "сообщение", isActive: "активна", isCleared: "снята", ended: "завершена",
    unknown: "не снята", activeUnconfirmed: "активна, не подтверждена",
    clearedUnconfirmed: "снята, не подтверждена", connected: "на связи",
    reconnecting: "связь потеряна", connecting: "подключение",
    silent: "нет признаков жизни",
    silence: "Сервер не отвечает с {0}. Показанные данные могли устареть.",
    targetsGood: "подключено: {0}", targetSince: "{0}: {1} с {2}", target_lost: "связь потеряна",
    target_connecting: "подключается", target_importing: "считывается",
    target_disabled: "отключена", lastKnown: "последнее известное {0}",
    hasLeft: "больше не в этом виде", waiting: "новых: {0}", moved: "новый порядок",
    tryAgain: "Повторить", confirmation: "Подтверждение",
    confirmation_requested: "запрошено: {0}, {1}",
    confirmation_accepted: "принято контроллером: {0}, {1}",
    confirmation_confirmed: "подтверждено: {0}, {1}",
    confirmation_failed: "не удалось: {0}, {1}",
    confirmation_unanswered: "нет ответа: {0}, {1}",
    raisedAgain: "Тревога возникла снова. Ничего не подтверждено.",
    gap: "пропуск", gapTitle: "С {0} по {1} события могут отсутствовать: {2}",
    gapLasts: "сейчас", gapLost: "потеряно: {0}", gap_disconnected: "нет связи",
    gap_forgotten: "хранилище заполнено", gap_database_changed: "база регистратора сменилась",
    gap_rejected: "не читаются", range: "{0}–{1} из {2}",
    confirmFailed: "Не удалось подтвердить тревогу",
    loadFailed: "Не удалось загрузить список", none: "нет (без текстов)",
    received: "Получено", severityName: "Важность", class: "Класс", source: "Источник",
    causes: "Причины и устранение", details: "Подробности", parameters: "Параметры",
    name: "Имя", id: "Номер",
  },
};

/** Each in its own language; the first is taken when the browser's is not among them. */
export const locales = [
  ["en-US", "English"], ["de-DE", "Deutsch"], ["ru-RU", "Русский"], ["fr-FR", "Français"],
  ["it-IT", "Italiano"], ["es-ES", "Español"], ["pl-PL", "Polski"], ["zh-CN", "中文"],
];

let current = words.en;

export const label = (key, ...values) =>
  (current[key] ?? key).replace(/\{(\d)\}/g, (_, index) => values[index]);

/** Takes the words of the locale, English where there are none, and puts them on the page. */
export function useLanguage(locale) {
  const language = locale.slice(0, 2);
  current = words[language] ?? words.en;
  document.documentElement.lang = words[language] ? language : "en";
  document.title = label("title");
  for (const element of document.querySelectorAll("[data-label]"))
    element.textContent = label(element.dataset.label);
  for (const element of document.querySelectorAll("[data-label-aria]"))
    element.setAttribute("aria-label", label(element.dataset.labelAria));
}
