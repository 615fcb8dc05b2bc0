// Of signing in and out.
export const words = {
  signInTitle: "Bitte anmelden", userName: "Name", password: "Kennwort", signIn: "Anmelden",
  signOut: "Abmelden", signedIn: "{0} ({1})", role_view: "darf ansehen",
  role_confirm: "darf quittieren", role_engineer: "Ingenieur",
  wrongPassword: "Name und Kennwort passen nicht zusammen.",
  tooManyAttempts: "Zu viele Versuche. Bitte mindestens eine Minute warten.",
  signInFailed: "Die Anmeldung ist fehlgeschlagen: {0}",
};
