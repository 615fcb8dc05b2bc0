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
    Good: "connected", "Not Connected": "not connected", Disabled: "disabled",
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
    reconnecting: "Verbindung verloren", connecting: "verbindet", Good: "verbunden",
    "Not Connected": "nicht verbunden", Disabled: "abgeschaltet", range: "{0}–{1} von {2}",
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
    reconnecting: "связь потеряна", connecting: "подключение", Good: "подключена",
    "Not Connected": "нет связи", Disabled: "отключена", range: "{0}–{1} из {2}",
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
